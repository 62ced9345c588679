#include "controller/AlphaTabController.h"
#include "engine_host/bridge/ScriptHandler.h"
#include "pdf/conversion/PDFDocument.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;

class TestControllerState final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initialValues()
    {
        TestSurroundings world;
        const AlphaTabController c(world.make());
        QVERIFY(!c.bridgeReady && !c.playerReady && !c.isPlaying && !c.hasScore && !c.hasBackingTrack);
        QCOMPARE(c.currentTime.value(), 0.0);
        QCOMPARE(c.endTime.value(), 0.0);
        QVERIFY(c.title.value().isEmpty() && c.artist.value().isEmpty());
        QVERIFY(c.tracks.value().isEmpty() && c.recentFiles.value().isEmpty());
        QVERIFY(!c.pdfDocument.value() && !c.pdfURL.value() && !c.pdfScrollTarget.value());
        QVERIFY(!c.converting && !c.conversionError.value());
        QCOMPARE(c.pdfPagesAcross.value(), 2);
        QVERIFY(!c.preferSynth && !c.looping && !c.metronome && !c.countIn && !c.horizontalLayout);
        QCOMPARE(c.tempoPercent.value(), 100.0);
        QCOMPARE(c.masterVolume.value(), 1.0);
        QCOMPARE(c.zoom.value(), 1.0);
        QCOMPARE(c.metronomeVolume.value(), 0.6);
        QCOMPARE(c.metronomeSound.value(), u"woodblock"_s);
        QVERIFY(c.metronomeAccent);
        QCOMPARE(c.metronomeMode.value(), u"beat"_s);
    }

    void constructionOnlyLoadsThePage()
    {
        TestSurroundings world;
        const AlphaTabController c(world.make());
        QCOMPARE(world.engine->loads, QList<QUrl>{ QUrl(u"qv-app://app/index.html"_s) });
        QVERIFY(world.engine->scripts.isEmpty());
        QVERIFY(!QFile::exists(world.path(u"defaults.json"_s)));
        QVERIFY(world.log->isEmpty());
    }

    void theEngineIsMadeWithTheWebFolderThereIs()
    {
        TestSurroundings world;
        QList<std::optional<QString>> folders;
        for (const std::optional<QString> &folder : { std::optional<QString>(), std::optional(u"/some/web"_s) }) {
            world.webFolder = folder;
            Surroundings made = world.make();
            made.makeEngine = [&](ScriptHandler &, const std::optional<QString> &given) {
                folders << given;
                return std::make_unique<RecordingEngine>(world.engine);
            };
            const AlphaTabController c(std::move(made));
        }
        QCOMPARE(folders, (QList<std::optional<QString>>{ std::nullopt, u"/some/web"_s }));
    }

    void storedPagesAcross_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<int>("expected");
        QTest::newRow("below") << QByteArray("0") << 1;
        QTest::newRow("negative") << QByteArray("-4") << 1;
        QTest::newRow("above") << QByteArray("9") << 6;
        QTest::newRow("inside") << QByteArray("5") << 5;
        QTest::newRow("text") << QByteArray("\"5\"") << 2;
        QTest::newRow("boolean") << QByteArray("true") << 2;
        QTest::newRow("fraction") << QByteArray("3.5") << 2;
        QTest::newRow("huge") << QByteArray("9000000000000000") << 6;
    }

    void storedPagesAcross()
    {
        QFETCH(QByteArray, stored);
        TestSurroundings world;
        world.file(u"defaults.json"_s, "{\"pdfPagesAcross\": " + stored + '}');
        const AlphaTabController c(world.make());
        QTEST(c.pdfPagesAcross.value(), "expected");
    }

    void storedMetronomeSettings()
    {
        TestSurroundings world;
        world.file(u"defaults.json"_s,
            R"({"metronomeVolume": 1, "metronomeSound": "tick", "metronomeAccent": false,
                       "metronomeMode": "bar"})");
        const AlphaTabController c(world.make());
        QCOMPARE(c.metronomeVolume.value(), 1.0);
        QCOMPARE(c.metronomeSound.value(), u"tick"_s);
        QVERIFY(!c.metronomeAccent);
        QCOMPARE(c.metronomeMode.value(), u"bar"_s);
    }

    void mistypedMetronomeSettingsFallBack()
    {
        TestSurroundings world;
        world.file(u"defaults.json"_s,
            R"({"metronomeVolume": "1", "metronomeSound": 3, "metronomeAccent": 0, "metronomeMode": null})");
        const AlphaTabController c(world.make());
        QCOMPARE(c.metronomeVolume.value(), 0.6);
        QCOMPARE(c.metronomeSound.value(), u"woodblock"_s);
        QVERIFY(c.metronomeAccent);
        QCOMPARE(c.metronomeMode.value(), u"beat"_s);
    }

    void eachSettingSendsItsCall()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.tempoPercent = 50;
        c.tempoPercent = 100;
        c.tempoPercent = 75;
        c.masterVolume = 0.5;
        c.looping = true;
        c.metronome = true;
        c.countIn = true;
        c.countIn = false;
        c.horizontalLayout = true;
        c.horizontalLayout = false;
        c.zoom = 1.1;
        c.preferSynth = true;
        const QStringList expected{
            u"window.qv.setSpeed(0.5)"_s,
            u"window.qv.setSpeed(1.0)"_s,
            u"window.qv.setSpeed(0.75)"_s,
            u"window.qv.setMasterVolume(0.5)"_s,
            u"window.qv.setLooping(true)"_s,
            u"window.qv.setMetronome(true)"_s,
            u"window.qv.setCountIn(1)"_s,
            u"window.qv.setCountIn(0)"_s,
            u"window.qv.setLayout('horizontal')"_s,
            u"window.qv.setLayout('page')"_s,
            u"window.qv.setZoom(1.1)"_s,
            u"window.qv.setSoundSource(true)"_s,
        };
        QCOMPARE(world.engine->take(), expected);
        QVERIFY(!QFile::exists(world.path(u"defaults.json"_s)));
    }

    void anEqualValueIsSentAgain()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.zoom = c.zoom.value();
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.setZoom(1.0)"_s });
    }

    void metronomeSettingsAreStoredAndSent()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.metronomeVolume = 0.25;
        c.metronomeSound = u"click"_s;
        c.metronomeAccent = false;
        c.metronomeMode = u"half"_s;
        const QStringList expected{
            u"window.qv.configMetronome(0.25, 'woodblock', true, 'beat')"_s,
            u"window.qv.configMetronome(0.25, 'click', true, 'beat')"_s,
            u"window.qv.configMetronome(0.25, 'click', false, 'beat')"_s,
            u"window.qv.configMetronome(0.25, 'click', false, 'half')"_s,
        };
        QCOMPARE(world.engine->take(), expected);
        const auto stored = world.defaults();
        QCOMPARE(stored->real(u"metronomeVolume"_s), 0.25);
        QCOMPARE(stored->text(u"metronomeSound"_s), u"click"_s);
        QCOMPARE(stored->boolean(u"metronomeAccent"_s), false);
        QCOMPARE(stored->text(u"metronomeMode"_s), u"half"_s);
    }

    void theFiveSettingsSurviveARestartAndNoOther()
    {
        TestSurroundings world;
        {
            AlphaTabController first(world.make());
            first.pdfPagesAcross = 4;
            first.metronomeVolume = 0.3;
            first.metronomeSound = u"beep"_s;
            first.metronomeAccent = false;
            first.metronomeMode = u"quarter"_s;
            first.tempoPercent = 50;
            first.masterVolume = 0.2;
            first.looping = true;
            first.metronome = true;
            first.preferSynth = true;
            first.horizontalLayout = true;
            first.zoom = 2;
        }
        const AlphaTabController second(world.make());
        QCOMPARE(second.pdfPagesAcross.value(), 4);
        QCOMPARE(second.metronomeVolume.value(), 0.3);
        QCOMPARE(second.metronomeSound.value(), u"beep"_s);
        QVERIFY(!second.metronomeAccent);
        QCOMPARE(second.metronomeMode.value(), u"quarter"_s);
        QCOMPARE(second.tempoPercent.value(), 100.0);
        QCOMPARE(second.masterVolume.value(), 1.0);
        QVERIFY(!second.looping && !second.metronome && !second.preferSynth && !second.horizontalLayout);
        QCOMPARE(second.zoom.value(), 1.0);
    }

    void pagesAcrossAreStoredAsGivenAndNotSent()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.pdfPagesAcross = 9;
        QCOMPARE(c.pdfPagesAcross.value(), 9);
        QCOMPARE(world.defaults()->integer(u"pdfPagesAcross"_s), 9);
        QVERIFY(world.engine->scripts.isEmpty());
    }

    void thePageIsLoadedLast()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        world.environment.insert(u"QV_LOGFILE"_s, world.path(u"smoke.log"_s));
        world.file(u"smoke.log"_s, "the last run");
        const QUrl song = world.file(u"song.gp"_s);
        world.defaults()->setTextList(u"recentFiles"_s, { song.toLocalFile() });
        Surroundings made = world.make();
        QStringList steps;
        const auto state = [&world, &song](const QString &step, const MessageReceiver *receiver) {
            const auto *controller = dynamic_cast<const AlphaTabController *>(receiver);
            const bool recents = controller && controller->recentFiles.value() == QList<QUrl>{ song };
            const bool log = QFileInfo(world.path(u"smoke.log"_s)).size() > 0;
            return step + (log ? u", old log"_s : QString()) + (recents ? u", recent files"_s : QString());
        };
        made.makeEngine = [&, make = made.makeEngine](ScriptHandler &handler, const std::optional<QString> &webFolder) {
            steps << state(u"engine"_s, handler.controller());
            world.engine->loading = [&] { steps << state(u"page"_s, handler.controller()); };
            return make(handler, webFolder);
        };
        const AlphaTabController c(std::move(made));
        QCOMPARE(steps, (QStringList{ u"engine, old log"_s, u"page, recent files"_s }));
        world.engine->loading = {};
    }

    void theRecordingTakesTheCountInAway()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        reportRecording(c, true);
        c.countIn = true;
        world.engine->take();
        c.preferSynth = false;
        QCOMPARE(
            world.engine->take(), (QStringList{ u"window.qv.setSoundSource(false)"_s, u"window.qv.setCountIn(0)"_s }));
        QVERIFY(!c.countIn);
    }

    void withoutARecordingTheCountInStays()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.countIn = true;
        world.engine->take();
        c.preferSynth = false;
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.setSoundSource(false)"_s });
        QVERIFY(c.countIn);
    }

    void theSynthNeverTouchesTheCountIn()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        reportRecording(c, true);
        c.countIn = true;
        world.engine->take();
        c.preferSynth = true;
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.setSoundSource(true)"_s });
        QVERIFY(c.countIn);
    }

    void aScriptErrorIsOneLogLineAndChangesNothing()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        world.engine->error = u"TypeError: no"_s;
        c.zoom = 1.5;
        QCOMPARE(*world.log, QStringList{ u"[Quaverly] JS error: TypeError: no"_s });
        QCOMPARE(c.zoom.value(), 1.5);
    }
};

QTEST_GUILESS_MAIN(TestControllerState)
#include "test_controller_state.moc"
