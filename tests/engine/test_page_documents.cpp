#include "engine_host/bridge/BridgeCalls.h"
#include "tests/engine/EngineScores.h"
#include "tests/engine/PageTest.h"
#include "tests/engine/RecordedScores.h"

using namespace Qt::StringLiterals;

namespace {

QStringList trackNames(const QVariantMap &score)
{
    QStringList names;
    for (const QVariant &track : score.value(u"tracks"_s).toList())
        names << track.toMap().value(u"name"_s).toString();
    return names;
}

} // namespace

class TestPageDocuments final : public PageTest {
    Q_OBJECT

private Q_SLOTS:
    void aScoreIsAnnouncedWithItsTracksInOrder()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .parts = { u"Flute"_s, u"Viola"_s, u"Bass"_s } })));
        const QVariantMap score = m_session->last(u"score"_s);
        QCOMPARE(score.value(u"title"_s).toString(), u"Tune"_s);
        QCOMPARE(score.value(u"hasBackingTrack"_s), QVariant(false));
        QCOMPARE(trackNames(score), QStringList({ u"Flute"_s, u"Viola"_s, u"Bass"_s }));
        const QVariantList tracks = score.value(u"tracks"_s).toList();
        for (int i = 0; i < 3; ++i)
            QCOMPARE(tracks.at(i).toMap().value(u"index"_s).toInt(), i);
    }

    void theLengthIsKnownWithTheScore()
    {
        QVERIFY(m_session->open(EngineScores::musicXml({ .bars = 8 })));
        const EngineSession::Heard score = m_session->heard(u"score"_s).constFirst();
        const EngineSession::Heard first = m_session->heard(u"position"_s).constFirst();
        QVERIFY(first.at >= score.at && first.at <= m_session->heard(u"rendered"_s).constFirst().at);
        QCOMPARE(first.message.value(u"currentTime"_s).toDouble(), 0.0);
        QCOMPARE(first.message.value(u"endTime"_s).toDouble(), 16000.0);
    }

    void everyTitleSurvives_data()
    {
        QTest::addColumn<QString>("title");
        QTest::newRow("accents") << u"Été à Mañana – Größe"_s;
        QTest::newRow("cyrillic") << u"Подмосковные вечера"_s;
        QTest::newRow("chinese") << u"茉莉花"_s;
        QTest::newRow("japanese") << u"さくらさくら"_s;
        QTest::newRow("quotes") << u"It's \"here\" \\ there"_s;
    }

    void everyTitleSurvives()
    {
        QFETCH(QString, title);
        QVERIFY(m_session->open(EngineScores::musicXml({ .title = title, .composer = title })));
        QCOMPARE(m_session->last(u"score"_s).value(u"title"_s).toString(), title);
        const QString drawn = m_session->valueOf(u"document.getElementById('score-page').textContent"_s).toString();
        QVERIFY2(drawn.contains(title), qPrintable(drawn.left(200)));
    }

    void theDemoIsThere()
    {
        QVERIFY(m_session->openDemo());
        QCOMPARE(trackNames(m_session->last(u"score"_s)),
            QStringList({ u"Lead Guitar"_s, u"Rhythm Guitar"_s, u"Bass"_s, u"Drums"_s }));
        QVERIFY(m_session->length() > 60000);
    }

    void aFileThatCannotBeReadLeavesTheScore_data()
    {
        QTest::addColumn<QString>("base64");
        const auto row = [](const char *name, const QByteArray &bytes) {
            QTest::newRow(name) << QString::fromLatin1(bytes.toBase64());
        };
        QTest::newRow("not base64") << u"!!! not base64 !!!"_s;
        row("empty", {});
        row("plain text", "Dear reader, this is no score.\n");
        row("alphaTab's own text language", "\\title \"Sneaky\"\n.\n3.3 4.3 5.3\n");
        row("a head without a body",
            QByteArray("\x18"
                       "FICHIER GUITAR PRO v5.10")
                .leftJustified(40, '\0'));
        row("a zip of nothing", QByteArray("PK\x03\x04").leftJustified(200, '\0'));
        row("half a MusicXML file", EngineScores::musicXml({}).left(700));
        row("MusicXML without music", EngineScores::musicXml({ .parts = {} }));
        row("a web page", "<html><body>no</body></html>");
        row("a truncated Guitar Pro 3 file", EngineScores::ferry(u"gp3"_s).left(6000));
        row("a truncated Guitar Pro 4 file", EngineScores::ferry(u"gp4"_s).left(6000));
        row("a truncated Guitar Pro 5 file", EngineScores::ferry(u"gp5"_s).left(9000));
        row("a truncated Guitar Pro 6 file", EngineScores::ferry(u"gpx"_s).left(20000));
        row("a truncated Guitar Pro 7 file", EngineScores::ferry(u"gp"_s).left(12000));
        row("a truncated compressed MusicXML file", EngineScores::ferry(u"mxl"_s).left(80000));
        if (EngineScores::haveSamples()) {
            row("a real Guitar Pro 5 file, truncated", EngineScores::sample(u"canon.gp5"_s).left(30000));
            row("a real Guitar Pro 7 file, truncated", EngineScores::sample(u"serenade.gp"_s).left(20000));
            row("a real Guitar Pro 6 file, truncated", EngineScores::sample(u"serenade.gpx"_s).left(20000));
            row("real compressed MusicXML, truncated", EngineScores::sample(u"Telemann.mxl"_s).left(4000));
        }
    }

    void aFileThatCannotBeReadLeavesTheScore()
    {
        QFETCH(QString, base64);
        QVERIFY(m_session->open(EngineScores::musicXml({})));
        m_session->call(u"window.qv.loadBase64('%1')"_s.arg(base64));
        QVERIFY(m_session->waitForCount(u"error"_s, 1));
        const QString reason = m_session->last(u"error"_s).value(u"message"_s).toString();
        QVERIFY2(reason.size() > 15 && reason.endsWith(u'.') && reason.at(0).isUpper(), qPrintable(reason));
        QCOMPARE(m_session->count(u"score"_s), 1);
        QCOMPARE(notice(), reason);

        m_session->call(BridgeCalls::seekToTime(4000));
        QVERIFY(m_session->waitFor([&] { return qAbs(m_session->position() - 4000) < 20; }));
        QVERIFY(m_session->open(EngineScores::musicXml({ .title = u"The next one"_s })));
        QCOMPARE(m_session->last(u"score"_s).value(u"title"_s).toString(), u"The next one"_s);
        QCOMPARE(m_session->count(u"error"_s), 1);
        QCOMPARE(notice(), QString());
    }

    void aFileThatTakesLongIsAnnounced()
    {
        // What the reader sees: the texts of the notice in each frame in which it is not transparent.
        m_session->call(uR"((() => {
            window.seen = new Set();
            const notice = document.getElementById("notice");
            const look = () => {
                if (!notice.hidden && Number(getComputedStyle(notice).opacity) > 0) seen.add(notice.textContent);
                requestAnimationFrame(look);
            };
            look();
        })())"_s);
        const auto seen = [this] { return m_session->valueOf(u"[...seen]"_s).toStringList(); };
        QVERIFY(m_session->open(EngineScores::ferry(u"gp"_s)));
        QStringList parts;
        for (int part = 1; part <= 30; ++part)
            parts << u"Part %1"_s.arg(part);
        QVERIFY(m_session->open(EngineScores::musicXml({ .parts = parts, .bars = 120 })));
        QCOMPARE(seen(), QStringList{ u"Opening the score…"_s });
        QCOMPARE(notice(), QString());
    }

    void ofFilesInQuickSuccessionTheLastStays()
    {
        QList<QByteArray> files{ EngineScores::musicXml(
                                     { .title = u"One"_s, .parts = { u"A"_s, u"B"_s, u"C"_s }, .bars = 90 }),
            EngineScores::musicXml({ .title = u"Two"_s, .parts = { u"A"_s, u"B"_s }, .bars = 60 }),
            EngineScores::musicXml({ .title = u"Three"_s, .bars = 2 }) };
        const bool real = EngineScores::haveSamples();
        files.prepend(real ? EngineScores::sample(u"canon-audio-track.gp"_s)
                           : RecordedScores::score(RecordedScores::tone(20), 10));
        files.prepend(real ? EngineScores::sample(u"canon.gp5"_s) : EngineScores::ferry(u"gp5"_s));
        for (const QByteArray &file : files)
            m_session->call(BridgeCalls::loadBase64(file));
        const auto lastIsHere = [&] { return m_session->last(u"score"_s).value(u"title"_s) == u"Three"_s; };
        QVERIFY(m_session->waitFor([&] { return lastIsHere() && m_session->count(u"rendered"_s) > 0; }));
        QVERIFY(
            m_session->waitFor([&] { return m_session->count(u"playerReady"_s) == 1 && m_session->length() == 4000; }));
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->position() > 1000; }));
        QVERIFY(lastIsHere());
        QVERIFY(
            m_session->valueOf(u"document.getElementById('score-page').textContent"_s).toString().contains(u"Three"_s));
    }

    void theExportOpensAgain()
    {
        QVERIFY(
            m_session->open(EngineScores::musicXml({ .title = u"Überfahrt"_s, .parts = { u"Eins"_s, u"Zwei"_s } })));
        m_session->call(BridgeCalls::exportGp());
        QVERIFY(m_session->waitForCount(u"gpData"_s, 1));
        verifyExport(m_session->last(u"score"_s), m_session->length());
        QCOMPARE(m_session->last(u"gpData"_s).value(u"title"_s).toString(), u"Überfahrt"_s);
    }

    void aScoreThatCannotBePlayedIsShown()
    {
        m_session->valueOf(u"const { prototype } = alphaTab.midi.MidiFileGenerator; "
                           "globalThis.generate = prototype.generate; "
                           "prototype.generate = () => { throw new Error('no such metre'); }; 1"_s);
        m_session->call(BridgeCalls::loadBase64(EngineScores::musicXml({ .title = u"Mute"_s })));
        QVERIFY(m_session->waitForCount(u"rendered"_s, 1));
        QVERIFY(m_session->waitForCount(u"error"_s, 1));
        const QString sentence = u"The score cannot be played (no such metre)."_s;
        QCOMPARE(m_session->last(u"error"_s).value(u"message"_s).toString(), sentence);
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitForCount(u"error"_s, 2));
        QCOMPARE(m_session->last(u"error"_s).value(u"message"_s).toString(), sentence);
        QVERIFY(!m_session->isPlaying());
        m_session->valueOf(u"alphaTab.midi.MidiFileGenerator.prototype.generate = globalThis.generate; 1"_s);
        QVERIFY(m_session->open(EngineScores::musicXml({ .title = u"Heard"_s })));
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->isPlaying() && m_session->position() > 400; }));
        QCOMPARE(m_session->count(u"error"_s), 2);
    }

    void theExportKeepsTheBackingTrack()
    {
        QVERIFY(m_session->open(RecordedScores::score(RecordedScores::tone(4), 2)));
        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->isPlaying() && m_session->position() > 400; }));
        m_session->call(BridgeCalls::stop());
        m_session->call(BridgeCalls::exportGp());
        QVERIFY(m_session->waitForCount(u"gpData"_s, 1));
        const QString kept = u"globalThis.keptBackingTrack"_s;
        m_session->valueOf(u"import('qv-app://app/src/score-files/score-files.js').then(({ readScore }) => { "
                           "const { score } = readScore(Uint8Array.from(atob('%1'), (c) => c.charCodeAt(0)), "
                           "new alphaTab.Settings()); "
                           "globalThis.keptBackingTrack = btoa(Array.from(score.backingTrack.rawAudioFile, "
                           "(byte) => String.fromCharCode(byte)).join('')); }); 1"_s.arg(
                               m_session->last(u"gpData"_s).value(u"data"_s).toString()));
        QVERIFY(m_session->waitFor([&] { return m_session->valueOf(kept).isValid(); }));
        QVERIFY(QByteArray::fromBase64(m_session->valueOf(kept).toByteArray()) == RecordedScores::tone(4));
    }

    void everyFormatOpensPlaysAndExports_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("tracks");
        for (const char *kind : { "gp3", "gp4", "gp5", "gpx", "gp", "musicxml", "mxl" })
            QTest::newRow(kind) << EngineScores::ferry(QString::fromLatin1(kind)) << u"Ferry at Dusk"_s << 4;
        QTest::newRow("gp with a backing track")
            << RecordedScores::score(RecordedScores::encoded(u"slow.ogg"_s), 8) << u"Recorded"_s << 2;
        if (!EngineScores::haveSamples())
            return;
        QTest::newRow("a real gp5") << EngineScores::sample(u"canon.gp5"_s) << u"Canon Rock"_s << 9;
        QTest::newRow("a real gp8") << EngineScores::sample(u"canon-audio-track.gp"_s) << u"Canon Rock"_s << 9;
        QTest::newRow("a real gp7") << EngineScores::sample(u"serenade.gp"_s) << u"Serenade to a Dream"_s << 4;
        QTest::newRow("a real gp6") << EngineScores::sample(u"serenade.gpx"_s) << u"Serenade to a Dream"_s << 4;
        QTest::newRow("a real gp3") << EngineScores::sample(u"effects.gp3"_s) << u"Effects"_s << 1;
        QTest::newRow("a real gp4") << EngineScores::sample(u"effects.gp4"_s) << u"Effects"_s << 1;
        QTest::newRow("a real xml") << EngineScores::sample(u"SchbAvMaSample.xml"_s) << u"Ave Maria"_s << 2;
        QTest::newRow("a real mxl") << EngineScores::sample(u"Telemann.mxl"_s)
                                    << u"Excerpt from \"Liebe! Liebe! Was ist schöner als die Liebe?\""_s << 2;
    }

    void everyFormatOpensPlaysAndExports()
    {
        QFETCH(QByteArray, file);
        QVERIFY(m_session->open(file));
        const QVariantMap score = m_session->last(u"score"_s);
        QTEST(score.value(u"title"_s).toString(), "title");
        QTEST(int(score.value(u"tracks"_s).toList().size()), "tracks");
        QVERIFY(m_session->valueOf(u"document.querySelectorAll('#notation svg').length"_s).toInt() > 0);

        m_session->call(BridgeCalls::playPause());
        QVERIFY(m_session->waitFor([&] { return m_session->isPlaying() && m_session->position() > 400; }));
        m_session->call(BridgeCalls::stop());
        QVERIFY(m_session->waitFor([&] { return !m_session->isPlaying(); }));
        m_session->call(BridgeCalls::exportGp());
        QVERIFY(m_session->waitForCount(u"gpData"_s, 1));
        verifyExport(score, m_session->length());
        QCOMPARE(m_session->count(u"error"_s), 0);
    }

    void whatNobodyNeedsCanBeCollected()
    {
        m_session->valueOf(u"globalThis.lost = new WeakRef(new Array(100000).fill(0)); 1"_s);
        m_session->valueOf(
            u"import('qv-app://app/src/shared/garbage.js').then((garbage) => { garbage.collectThoroughly(); "
            "globalThis.collected = globalThis.lost.deref() === undefined; }); 1"_s);
        const QString collected = u"globalThis.collected"_s;
        QVERIFY(m_session->waitFor([&] { return m_session->valueOf(collected).isValid(); }));
        QCOMPARE(m_session->valueOf(collected), QVariant(true));
    }

private:
    /// Opens the exported file: it is the same piece, the same tracks and as many bars.
    /// What stands over the score; empty when nothing does.
    QString notice()
    {
        return m_session
            ->valueOf(u"(({ hidden, textContent }) => hidden ? '' : textContent)"
                      "(document.getElementById('notice'))"_s)
            .toString();
    }

    void verifyExport(const QVariantMap &original, double length)
    {
        const QString data = m_session->last(u"gpData"_s).value(u"data"_s).toString();
        const QString countBars = u"globalThis.barCount"_s;
        m_session->valueOf(
            u"import('qv-app://app/src/score-files/score-files.js').then((files) => { "
            "const read = (text) => files.readScore(Uint8Array.from(atob(text), (c) => c.charCodeAt(0)), "
            "new alphaTab.Settings()); "
            "globalThis.barCount = read('%1').score.masterBars.length; }); 1"_s.arg(data));
        QVERIFY(m_session->waitFor([&] { return m_session->valueOf(countBars).toInt() > 0; }));
        QVERIFY(m_session->open(QByteArray::fromBase64(data.toLatin1())));
        const QVariantMap again = m_session->last(u"score"_s);
        QCOMPARE(again.value(u"title"_s), original.value(u"title"_s));
        QCOMPARE(trackNames(again), trackNames(original));
        QVERIFY2(qAbs(m_session->length() - length) < length / 100,
            qPrintable(u"%1 instead of %2 ms"_s.arg(m_session->length()).arg(length)));
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPageDocuments>(argc, argv); }
#include "test_page_documents.moc"
