#include "tests/engine/DecodingComparison.h"
#include "tests/engine/EngineSession.h"
#include "tests/engine/RecordedScores.h"

using namespace Qt::StringLiterals;

/// What Chromium makes of backing tracks.
class TestPageRecordings final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_session = std::make_unique<EngineSession>();
        QVERIFY(m_session->start());
    }

    void cleanupTestCase()
    {
        QCOMPARE(m_session->complaints(), QStringList());
        m_session.reset();
    }

    void partsAreWhatTheWholeIs_data()
    {
        QTest::addColumn<int>("rate");
        QTest::newRow("even.mp3") << 44100;
        QTest::newRow("varying.mp3") << 44100;
        QTest::newRow("untold.mp3") << 44100;
        QTest::newRow("low.mp3") << 22050;
        QTest::newRow("vorbis.ogg") << 44100;
        QTest::newRow("slow.ogg") << 8000;
        QTest::newRow("opus.ogg") << 48000;
        QTest::newRow("words.wav") << 44100;
        QTest::newRow("floats.wav") << 44100;
    }

    void partsAreWhatTheWholeIs()
    {
        QFETCH(int, rate);
        const QVariantMap found
            = compared(RecordedScores::encoded(QString::fromLatin1(QTest::currentDataTag())), rate, rate);
        QVERIFY2(found.value(u"parts"_s).toInt() >= 3, qPrintable(found.value(u"failed"_s).toString()));
        QCOMPARE(found.value(u"length"_s), found.value(u"wholeLength"_s));
        QVERIFY(found.value(u"loudest"_s).toDouble() > 8000);
        // Of 16-bit samples the last bit: decoders of MP3 round with a memory of what they rounded before.
        QVERIFY2(found.value(u"worst"_s).toDouble() < 2, qPrintable(found.value(u"worst"_s).toString()));
    }

    void anotherRateIsReachedAsTheWebEngineDoes()
    {
        const QVariantMap found = compared(RecordedScores::encoded(u"slow.ogg"_s), 44100, 44100);
        QVERIFY2(found.value(u"parts"_s).toInt() >= 3, qPrintable(found.value(u"failed"_s).toString()));
        QVERIFY(qAbs(found.value(u"length"_s).toInt() - found.value(u"wholeLength"_s).toInt()) < 10);
        QVERIFY2(found.value(u"worst"_s).toDouble() < 0.02 * found.value(u"loudest"_s).toDouble(),
            qPrintable(found.value(u"worst"_s).toString()));
    }

    void aBackingTrackIsHeardToItsEndBehindDamage()
    {
        QByteArray damaged = RecordedScores::encoded(u"vorbis.ogg"_s);
        const qsizetype middle = damaged.size() / 2;
        damaged.replace(middle, 3000, QByteArray(3000, '\0'));
        const QVariantMap found = compared(damaged, 44100, 44100);
        QVERIFY2(found.value(u"length"_s).toInt() > 29 * 44100, qPrintable(found.value(u"failed"_s).toString()));
    }

private:
    QVariantMap compared(const QByteArray &file, int wholeRate, int partsRate)
    {
        m_session->valueOf(DecodingComparison::script(file, wholeRate, partsRate));
        m_session->waitFor([&] { return m_session->valueOf(u"globalThis.compared !== null"_s).toBool(); });
        return m_session->valueOf(u"globalThis.compared"_s).toMap();
    }

    std::unique_ptr<EngineSession> m_session;
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageRecordings>(argc, argv); }
#include "test_page_recordings.moc"
