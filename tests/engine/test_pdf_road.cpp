#include "app/QuaverlyApp.h"
#include "controller/AlphaTabController.h"
#include "engine_host/EnginePage.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageCells.h"
#include "tests/engine/EngineSession.h"
#include "tests/pdf/conversion/Archives.h"
#include "tests/pdf/conversion/StandIn.h"
#include "tests/support/EngineTestMain.h"
#include "tests/support/TestPDFs.h"
#include "tests/support/TestSurroundings.h"
#include "views/ContentView.h"

#include <QAbstractButton>
#include <QDeadlineTimer>
#include <QDir>
#include <QDropEvent>
#include <QEventLoop>
#include <QMainWindow>
#include <QMessageBox>
#include <QMimeData>
#include <QRegularExpression>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Not QTest::qWaitFor, whose way of turning the event loop slows Chromium down to a crawl.
bool waitFor(const std::function<bool()> &happened)
{
    const QDeadlineTimer deadline(30s);
    while (!happened()) {
        if (deadline.hasExpired())
            return false;
        QEventLoop loop;
        QTimer::singleShot(10ms, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

/// The program's window with the real page in it, a stand-in for Audiveris, and folders of its own.
class Program final {
    Q_DISABLE_COPY_MOVE(Program)

public:
    explicit Program(const char *words)
        : standIn(world.path(u"."_s), words, "3")
        , controller(surroundings())
        , application(controller)
        , window(application.window())
    {
        QDir().mkpath(temporary());
        qputenv("TMPDIR", QFile::encodeName(temporary()));
        window.resize(1000, 700);
        window.show();
    }
    ~Program() { qunsetenv("TMPDIR"); }

    bool drop(const QUrl &url)
    {
        QMimeData data;
        data.setUrls({ url });
        auto *target = window.findChild<ContentView *>();
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &enter);
        QDropEvent dropped(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &dropped);
        return enter.isAccepted() && dropped.isAccepted();
    }

    template <typename T> T *shown(const QString &name = {}) const
    {
        for (T *widget : window.findChildren<T *>()) {
            if (widget->isVisible() && (name.isEmpty() || widget->accessibleName() == name || textOf(widget) == name))
                return widget;
        }
        return nullptr;
    }

    QStringList leftBehind() const
    {
        return QDir(temporary()).entryList({ u"qv-omr-*"_s }, QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    /// The value of an expression in the page.
    QVariant valueOf(const QString &expression) const
    {
        bool arrived = false;
        QVariant answer;
        host->page()->runJavaScript(expression, [&](const QVariant &value) {
            answer = value;
            arrived = true;
        });
        return waitFor([&] { return arrived; }) ? answer : QVariant();
    }

    /// Converts the PDF that is shown, and waits for the score.
    bool convert()
    {
        auto *button = shown<QAbstractButton>(u"Convert to Guitar Pro"_s);
        if (!button)
            return false;
        button->click();
        return waitFor([&] { return !controller.converting.value(); })
            && waitFor([&] { return controller.hasScore && controller.playerReady && controller.endTime > 0; });
    }

    /// How many digits of a tablature are drawn in what is in view. Strings are drawn as filled boxes, digits as texts.
    int fretNumbers() const
    {
        return valueOf(uR"([...document.querySelectorAll("#notation text")]
            .filter(({ textContent }) => /^\d+$/.test(textContent.trim())).length)"_s)
            .toInt();
    }

    /// Whether the sound of the last moment has this partial, at most 20 dB below its strongest.
    bool sounds(double hertz) const
    {
        return valueOf(uR"((() => {
            const tap = globalThis.tap;
            if (!tap) return false;
            const spectrum = new Float32Array(tap.frequencyBinCount);
            tap.getFloatFrequencyData(spectrum);
            const strongest = spectrum.reduce((peak, level) => Math.max(peak, level), -Infinity);
            const bin = Math.round(%1 / (tap.context.sampleRate / tap.fftSize));
            const level = Math.max(...spectrum.subarray(bin - 1, bin + 2));
            return strongest > -60 && level > strongest - 20;
        })())"_s.arg(hertz))
            .toBool();
    }

    TestSurroundings world;
    const StandIn standIn;
    WebEngineHost *host = nullptr; ///< the one that the controller made
    AlphaTabController controller;
    QuaverlyApp application;
    QMainWindow &window;

private:
    QString temporary() const { return world.path(u"temporary"_s); }

    static QString textOf(const QWidget *widget)
    {
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        return button ? button->text() : QString();
    }

    Surroundings surroundings()
    {
        world.environment.insert(u"QV_AUDIVERIS"_s, StandIn::program());
        Surroundings made = world.make();
        made.webFolder = qEnvironmentVariable("QUAVERLY_WEB_FOLDER");
        made.makeEngine = [this](ScriptHandler &handler, const std::optional<QString> &webFolder) {
            auto one = std::make_unique<WebEngineHost>(handler, webFolder);
            host = one.get();
            return one;
        };
        return made;
    }
};

} // namespace

/// From a PDF that is dropped on the window to a score on the score page, and to the alert when that cannot be.
class TestPdfRoad final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDroppedSheetBecomesAScoreOnThePaper()
    {
        Program program("");
        AlphaTabController &c = program.controller;
        QVERIFY(waitFor([&] { return c.bridgeReady.value(); }));
        const QUrl sheet = program.world.file(u"song.pdf"_s, TestPDFs::colored(3));
        QVERIFY(program.drop(sheet));
        QVERIFY(waitFor([&] { return program.shown<PDFSheetView>() != nullptr; }));
        auto *grid = program.shown<PDFSheetView>();
        QVERIFY(waitFor([&] { return !grid->cells().cell(0).image().isNull(); }));

        auto *convert = program.shown<QAbstractButton>(u"Convert to Guitar Pro"_s);
        QVERIFY(convert);
        convert->click();
        QVERIFY(c.converting);
        QVERIFY2(!program.shown<QAbstractButton>(u"Convert to Guitar Pro"_s), "the spinner takes the button's place");

        QVERIFY(waitFor([&] { return !c.converting.value(); }));
        QVERIFY(!c.conversionError.value());
        QVERIFY2(!program.shown<PDFSheetView>(), "the sheet gives way to the score");
        QVERIFY(waitFor([&] { return c.hasScore.value() && c.playerReady.value() && c.endTime > 0; }));
        QCOMPARE(c.tracks.value().size(), 1);
        QVERIFY(waitFor([&] { return program.world.windowTitles->contains(u"song (converted)"_s); }));
        QCOMPARE(program.world.windowTitles->constLast(), u"song (converted)"_s);
        QCOMPARE(c.recentFiles.value(), QList<QUrl>{ sheet });
        QCOMPARE(program.leftBehind(), QStringList());
    }

    void aSheetWithTablatureBecomesAGuitarThatCanBeExported()
    {
        Program program("guitar");
        AlphaTabController &c = program.controller;
        QVERIFY(waitFor([&] { return c.bridgeReady.value(); }));
        QVERIFY(program.valueOf(EngineSession::listenScript()).toBool());
        QVERIFY(program.drop(QUrl::fromLocalFile(SHEETS u"/tab-joined.pdf"_s)));
        QVERIFY(waitFor([&] { return program.shown<PDFSheetView>() != nullptr; }));
        QVERIFY(program.convert());

        // As the screen shows it. alphaTab draws the tablature's numbers as texts.
        QCOMPARE(c.tracks.value().size(), 1);
        QCOMPARE(c.tracks.value().constFirst().name, u"Guitar"_s);
        QVERIFY(waitFor([&] { return program.fretNumbers() > 0; }));
        const int fretNumbers = program.fretNumbers();

        // C5 is written. A guitar sounds an octave lower.
        c.js(BridgeCalls::setLooping(true));
        c.js(BridgeCalls::playPause());
        QVERIFY2(waitFor([&] { return program.sounds(261.6); }), "C4 is heard");
        QVERIFY2(!program.sounds(130.8), "and no octave below it");
        c.js(BridgeCalls::playPause());

        const QString saved = program.world.path(u"saved.gp"_s);
        program.world.dialogs->fileToSave = QUrl::fromLocalFile(saved);
        c.js(BridgeCalls::exportGp());
        // The panel comes when the page's message has been dealt with.
        QVERIFY(waitFor([&] {
            program.world.letTimePass();
            return QFile::exists(saved);
        }));
        const QString score = QString::fromUtf8(memberOf(saved, "Content/score.gpif"));
        QVERIFY(score.contains(u"<Pitches>40 45 50 55 59 64</Pitches>"_s));
        const QRegularExpressionMatch instrument = QRegularExpression(u"<Program>(\\d+)</Program>"_s).match(score);
        QVERIFY(instrument.hasMatch());
        QVERIFY2(instrument.captured(1).toInt() >= 24 && instrument.captured(1).toInt() <= 31, "a guitar's program");

        const double length = c.endTime;
        QVERIFY(program.drop(QUrl::fromLocalFile(saved)));
        QVERIFY(waitFor([&] { return c.recentFiles.value().constFirst() == QUrl::fromLocalFile(saved); }));
        QVERIFY(waitFor([&] { return c.hasScore && c.playerReady && std::abs(c.endTime - length) < 1; }));
        QCOMPARE(c.tracks.value().constFirst().name, u"Guitar"_s);
        QVERIFY(waitFor([&] { return program.fretNumbers() == fretNumbers; }));
        c.js(BridgeCalls::playPause());
        QVERIFY2(waitFor([&] { return program.sounds(261.6); }), "C4 is heard again");
    }

    void aSheetThatCannotBeReadStaysAndTheUserIsTold()
    {
        Program program("nothing");
        AlphaTabController &c = program.controller;
        QVERIFY(program.drop(program.world.file(u"song.pdf"_s, TestPDFs::colored(2))));
        QVERIFY(waitFor([&] { return program.shown<QAbstractButton>(u"Convert to Guitar Pro"_s) != nullptr; }));
        auto *convert = program.shown<QAbstractButton>(u"Convert to Guitar Pro"_s);
        convert->click();
        QVERIFY(waitFor([&] { return program.shown<QMessageBox>() != nullptr; }));
        QCOMPARE(program.shown<QMessageBox>()->text(),
            u"Audiveris found no readable music in this PDF. (TAB-only sheets can't be converted — only standard "
            u"notation is read.)"_s);
        QVERIFY(program.shown<PDFSheetView>());
        QVERIFY(program.shown<QAbstractButton>(u"Convert to Guitar Pro"_s));
        QCOMPARE(program.leftBehind(), QStringList());
        program.shown<QMessageBox>()->accept();
        QVERIFY(!c.conversionError.value());
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestPdfRoad>(argc, argv); }
#include "test_pdf_road.moc"
