#include "engine_host/bridge/BridgeCalls.h"

#include <QTest>

#include <algorithm>
#include <bit>
#include <limits>
#include <random>

using namespace Qt::StringLiterals;

class TestBridgeCalls final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reals_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0.0 << u"0.0"_s;
        QTest::newRow("one") << 1.0 << u"1.0"_s;
        QTest::newRow("three quarters") << 0.75 << u"0.75"_s;
        QTest::newRow("six tenths") << 0.6 << u"0.6"_s;
        QTest::newRow("a remainder of repeated steps") << 1.0 - 0.1 - 0.1 << u"0.8"_s;
        QTest::newRow("a longer remainder") << 0.7 + 0.1 << u"0.7999999999999999"_s;
        QTest::newRow("negative") << -1.5 << u"-1.5"_s;
        QTest::newRow("a hundred thousand") << 100000.0 << u"100000.0"_s;
        QTest::newRow("large whole") << 1e15 << u"1000000000000000.0"_s;
        QTest::newRow("very large") << 1e16 << u"1e+16"_s;
        QTest::newRow("smallest plain") << 0.0001 << u"0.0001"_s;
        QTest::newRow("very small") << 0.00001 << u"1e-05"_s;
        QTest::newRow("third") << 1.0 / 3 << u"0.3333333333333333"_s;
    }

    void reals()
    {
        QFETCH(double, value);
        QTEST(BridgeCalls::formatReal(value), "text");
    }

    void realsReadBackExactly()
    {
        std::mt19937_64 random(20261121);
        for (int i = 0; i < 20000; ++i) {
            const auto value = std::bit_cast<double>(random());
            if (!std::isfinite(value))
                continue;
            const QString text = BridgeCalls::formatReal(value);
            QVERIFY2(text.contains(u'.') || text.contains(u'e'), qPrintable(text));
            QCOMPARE(text.toDouble(), value);
        }
    }

    void filesOfEveryLengthAreStandardBase64()
    {
        std::mt19937 random(20261121);
        for (qsizetype length = 0; length < 400; ++length) {
            QByteArray file(length, Qt::Uninitialized);
            std::generate(file.begin(), file.end(), [&random] { return char(random()); });
            QCOMPARE(BridgeCalls::loadBase64(file),
                u"window.qv.loadBase64('"_s + QString::fromLatin1(file.toBase64()) + u"')"_s);
        }
    }

    void catalogue_data()
    {
        QTest::addColumn<QString>("made");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const QString &made, const char *text) {
            QTest::newRow(name) << made << QString::fromLatin1(text);
        };
        row("file", BridgeCalls::loadBase64("\xff\xfe?>"), "window.qv.loadBase64('//4/Pg==')");
        row("empty file", BridgeCalls::loadBase64({}), "window.qv.loadBase64('')");
        row("demo", BridgeCalls::loadSample(), "window.qv.loadSample()");
        row("play", BridgeCalls::playPause(), "window.qv.playPause()");
        row("stop", BridgeCalls::stop(), "window.qv.stop()");
        row("seek", BridgeCalls::seekToTime(100000), "window.qv.seekToTime(100000.0)");
        row("speed", BridgeCalls::setSpeed(0.75), "window.qv.setSpeed(0.75)");
        row("volume", BridgeCalls::setMasterVolume(1), "window.qv.setMasterVolume(1.0)");
        row("loop", BridgeCalls::setLooping(true), "window.qv.setLooping(true)");
        row("metronome", BridgeCalls::setMetronome(false), "window.qv.setMetronome(false)");
        row("count-in on", BridgeCalls::setCountIn(true), "window.qv.setCountIn(1)");
        row("count-in off", BridgeCalls::setCountIn(false), "window.qv.setCountIn(0)");
        row("metronome set-up", BridgeCalls::configMetronome(0.6, u"woodblock"_s, true, u"beat"_s),
            "window.qv.configMetronome(0.6, 'woodblock', true, 'beat')");
        row("preview", BridgeCalls::previewMetronome(), "window.qv.previewMetronome()");
        row("source", BridgeCalls::setSoundSource(true), "window.qv.setSoundSource(true)");
        row("horizontal", BridgeCalls::setLayout(true), "window.qv.setLayout('horizontal')");
        row("page", BridgeCalls::setLayout(false), "window.qv.setLayout('page')");
        row("zoom", BridgeCalls::setZoom(1.1), "window.qv.setZoom(1.1)");
        row("tracks", BridgeCalls::renderTracks({ 0, 3 }), "window.qv.renderTracks([0,3])");
        row("mute", BridgeCalls::setTrackMute(2, true), "window.qv.setTrackMute(2, true)");
        row("solo", BridgeCalls::setTrackSolo(0, false), "window.qv.setTrackSolo(0, false)");
        row("track volume", BridgeCalls::setTrackVolume(3, 0.25), "window.qv.setTrackVolume(3, 0.25)");
        row("export", BridgeCalls::exportGp(), "window.qv.exportGp()");
    }

    void catalogue()
    {
        QFETCH(QString, made);
        QTEST(made, "text");
    }

    void aLongFileStaysOnOneLine()
    {
        const QString script = BridgeCalls::loadBase64(QByteArray(100000, 'x'));
        QVERIFY(!script.contains(u'\n'));
        QVERIFY(script.size() > 133000);
    }
};

QTEST_GUILESS_MAIN(TestBridgeCalls)
#include "test_bridge_calls.moc"
