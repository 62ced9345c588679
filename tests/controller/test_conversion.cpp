#include "controller/AlphaTabController.h"
#include "pdf/conversion/PDFDocument.h"
#include "tests/pdf/conversion/Processes.h"
#include "tests/pdf/conversion/StandIn.h"
#include "tests/support/OpenedPDF.h"
#include "tests/support/TestPDFs.h"
#include "tests/support/TestSurroundings.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A world with a stand-in for Audiveris and a PDF to convert.
struct Studio {
    explicit Studio(const char *words = "", const char *measures = "")
        : standIn(world.path(u"."_s), words, measures)
    {
        world.environment.insert(u"QV_AUDIVERIS"_s, StandIn::program());
        world.environment.insert(u"HOME"_s, world.path(u"home"_s));
        QDir().mkpath(world.path(u"temporary"_s));
        qputenv("TMPDIR", QFile::encodeName(world.path(u"temporary"_s)));
    }
    ~Studio() { qunsetenv("TMPDIR"); }

    QUrl pdf(const QString &name = u"song.pdf"_s) const
    {
        return world.file(name, TestPDFs::file({ { .media = "0 0 200 200", .drawing = "9 9 9 9 re f" } }));
    }

    QStringList leftBehind() const
    {
        return QDir(world.path(u"temporary"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    /// An executable file in the folder of the world.
    QString program(const QString &path) const
    {
        const QString full = world.path(path);
        QDir().mkpath(QFileInfo(full).path());
        QFile::copy(StandIn::program(), full);
        return full;
    }

    TestSurroundings world;
    const StandIn standIn;
};

} // namespace

class TestConversion final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theEngineFromTheEnvironmentComesFirst()
    {
        Studio studio;
        const QString own = studio.program(u"home/.local/opt/audiveris/bin/Audiveris"_s);
        AlphaTabController c(studio.world.make());
        QCOMPARE(c.audiverisBinary(), StandIn::program());
        QVERIFY(QFile::exists(own));
    }

    void theUsersOwnEngine_data()
    {
        QTest::addColumn<QString>("variable");
        QTest::newRow("missing") << u"/missing/Audiveris"_s;
        QTest::newRow("empty") << u""_s;
        QTest::newRow("a folder") << u"/tmp"_s;
        QTest::newRow("not executable") << u"/etc/passwd"_s;
        QTest::newRow("none") << QString();
    }

    void theUsersOwnEngine()
    {
        QFETCH(QString, variable);
        Studio studio;
        if (variable.isNull())
            studio.world.environment.remove(u"QV_AUDIVERIS"_s);
        else
            studio.world.environment.insert(u"QV_AUDIVERIS"_s, variable);
        AlphaTabController c(studio.world.make());
        QVERIFY(!c.audiverisBinary());
        const QString own = studio.program(u"home/.local/opt/audiveris/bin/Audiveris"_s);
        QCOMPARE(c.audiverisBinary(), own);
        QFile::setPermissions(own, QFile::ReadOwner | QFile::WriteOwner);
        QVERIFY(!c.audiverisBinary());
        // The package's comes before the user's.
        QFile::setPermissions(own, QFile::ReadOwner | QFile::ExeOwner);
        const QString packaged = studio.program(u"opt/audiveris/bin/Audiveris"_s);
        QCOMPARE(c.audiverisBinary(), packaged);
    }

    void thePackagesPlaceIsTheSystems()
    {
        QCOMPARE(Surroundings::system().packagedAudiveris, u"/opt/audiveris/bin/Audiveris"_s);
    }

    void withoutAnEngine()
    {
        Studio studio;
        studio.world.environment.remove(u"QV_AUDIVERIS"_s);
        AlphaTabController c(studio.world.make());
        const QUrl url = studio.pdf();
        QVERIFY(openPDF(c, url));
        c.convertOpenPDF();
        QCOMPARE(c.conversionError.value(),
            u"Audiveris (the music-recognition engine) was not found. Download it from "
            u"https://github.com/Audiveris/audiveris/releases and move Audiveris.app into /Applications, then try "
            u"again."_s);
        QVERIFY(!c.converting);
        QCOMPARE(c.pdfURL.value(), url);
    }

    void withoutAPdfNothingHappens()
    {
        Studio studio;
        studio.world.environment.remove(u"QV_AUDIVERIS"_s);
        AlphaTabController c(studio.world.make());
        c.convertOpenPDF();
        QVERIFY(!c.converting);
        QVERIFY(!c.conversionError.value());
    }

    void aSheetBecomesAScore()
    {
        Studio studio;
        AlphaTabController c(studio.world.make());
        const QUrl url = studio.pdf(u"a.song.pdf"_s);
        QVERIFY(openPDF(c, url));
        QTRY_COMPARE(studio.world.windowTitles->size(), 1);
        const QList<QUrl> recents = c.recentFiles.value();
        studio.world.engine->take();
        c.conversionError = u"an older one"_s;

        // Read at each change, so that the order of the steps shows.
        QStringList steps;
        c.converting.onChange(this, [&](bool converting) { steps << (converting ? u"begins"_s : u"ends"_s); });
        c.pdfDocument.onChange(this, [&](const auto &document) {
            QVERIFY(!document);
            steps << u"closes after "_s + QString::number(studio.world.engine->scripts.size()) + u" call"_s;
        });
        c.convertOpenPDF();
        QVERIFY(c.converting);
        QVERIFY(c.pdfDocument.value());
        QTRY_VERIFY(!c.converting);

        QCOMPARE(steps, QStringList({ u"begins"_s, u"ends"_s, u"closes after 1 call"_s }));
        const QStringList scripts = studio.world.engine->take();
        QCOMPARE(scripts.size(), 1);
        const QString start = u"window.qv.loadBase64('"_s;
        QVERIFY(scripts[0].startsWith(start) && scripts[0].endsWith(u"')"_s));
        const QByteArray xml
            = QByteArray::fromBase64(scripts[0].sliced(start.size(), scripts[0].size() - start.size() - 2).toLatin1());
        QVERIFY(xml.startsWith("<?xml") && xml.endsWith("</score-partwise>"));
        QVERIFY(!c.pdfURL.value());
        QTRY_COMPARE(*studio.world.windowTitles, QStringList({ u"a.song"_s, u"a.song (converted)"_s }));
        QCOMPARE(c.recentFiles.value(), recents);
        QCOMPARE(c.conversionError.value(), u"an older one"_s);
        QVERIFY(studio.leftBehind().isEmpty());
    }

    void aFailureLeavesTheSheetOpen()
    {
        Studio studio("fail");
        AlphaTabController c(studio.world.make());
        const QUrl url = studio.pdf();
        QVERIFY(openPDF(c, url));
        QTRY_COMPARE(studio.world.windowTitles->size(), 1);
        studio.world.engine->take();
        c.convertOpenPDF();
        QTRY_VERIFY(!c.converting);
        QCOMPARE(c.conversionError.value(), u"Audiveris failed.\n\nline 5\nline 6\nline 7\nline 8\nline 9\nline 10"_s);
        QVERIFY(c.pdfDocument.value());
        QCOMPARE(c.pdfURL.value(), url);
        QVERIFY(studio.world.engine->scripts.isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(studio.world.windowTitles->size(), 1);
        QVERIFY(studio.leftBehind().isEmpty());
        QVERIFY(studio.world.log->isEmpty());
    }

    void aPDFThatIsGone()
    {
        Studio studio;
        AlphaTabController c(studio.world.make());
        const QUrl url = studio.pdf();
        QVERIFY(openPDF(c, url));
        QFile::remove(url.toLocalFile());
        c.convertOpenPDF();
        QTRY_VERIFY(!c.converting);
        QCOMPARE(c.conversionError.value(), u"Could not read the PDF."_s);
    }

    void oneAtATime()
    {
        Studio studio;
        AlphaTabController c(studio.world.make());
        QVERIFY(openPDF(c, studio.pdf()));
        studio.world.engine->take();
        c.convertOpenPDF();
        c.convertOpenPDF();
        QTRY_VERIFY(!c.converting);
        QCoreApplication::processEvents();
        QCOMPARE(studio.standIn.report().size(), 1);
        QCOMPARE(studio.world.engine->scripts.size(), 1);
        c.convertOpenPDF(); // no PDF is open any more
        QVERIFY(!c.converting);
    }

    void theNextOneMayBeginAtTheEndOfTheOne()
    {
        Studio studio("fail");
        AlphaTabController c(studio.world.make());
        QVERIFY(openPDF(c, studio.pdf()));
        int failures = 0;
        c.conversionError.onChange(this, [&](const std::optional<QString> &) {
            if (++failures < 3)
                c.convertOpenPDF();
        });
        c.convertOpenPDF();
        // Each starts three programs, which is slow where they are watched.
        QTRY_COMPARE_WITH_TIMEOUT(failures, 3, 30'000);
        QVERIFY(!c.converting);
        QCOMPARE(studio.standIn.report().size(), 3);
    }

    void theMainThreadIsFreeMeanwhile()
    {
        Studio studio;
        AlphaTabController c(studio.world.make());
        // A whole page of letter size, so that there is something to draw.
        const TestPDFs::Page page{ .media = "0 0 612 792", .drawing = "9 9 90 90 re f" };
        QVERIFY(openPDF(c, studio.world.file(u"l.pdf"_s, TestPDFs::file({ page }))));
        QElapsedTimer clock;
        qint64 longest = 0;
        QTimer beat;
        connect(&beat, &QTimer::timeout, this, [&] { longest = std::max(longest, clock.restart()); });
        beat.start(1ms);
        clock.start();
        c.convertOpenPDF();
        QTRY_VERIFY_WITH_TIMEOUT(!c.converting, 30'000);
        QVERIFY2(longest < 250, qPrintable(QString::number(longest)));
        QVERIFY(!c.pdfURL.value());
    }

    void theEndOfTheControllerEndsTheEngine()
    {
        Studio studio("hang");
        auto c = std::make_unique<AlphaTabController>(studio.world.make());
        QVERIFY(openPDF(*c, studio.pdf()));
        studio.world.engine->take();
        c->convertOpenPDF();
        QTRY_COMPARE(studio.standIn.report().size(), 2);
        const QString processes = studio.standIn.report().at(1);
        QVERIFY(anyRuns(processes));
        QCOMPARE(studio.leftBehind().size(), 1);
        c.reset();
        QTRY_VERIFY(!anyRuns(processes));
        QVERIFY(studio.leftBehind().isEmpty());
        QCoreApplication::processEvents();
        QVERIFY(studio.world.engine->scripts.isEmpty());
    }

    void theEndOfTheApplicationDoesToo()
    {
        Studio studio("hang");
        AlphaTabController c(studio.world.make());
        QVERIFY(openPDF(c, studio.pdf()));
        c.convertOpenPDF();
        QTRY_COMPARE(studio.standIn.report().size(), 2);
        const QString processes = studio.standIn.report().at(1);
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        QTRY_VERIFY(!anyRuns(processes));
        QVERIFY(studio.leftBehind().isEmpty());
        QVERIFY(!c.conversionError.value());
    }

    void inSmokeTestsItStartsByItself()
    {
        Studio studio("fail");
        studio.world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        studio.world.environment.insert(u"QV_LOGFILE"_s, studio.world.path(u"smoke.log"_s));
        auto c = std::make_unique<AlphaTabController>(studio.world.make());
        QVERIFY(openPDF(*c, studio.pdf()));
        QVERIFY(studio.world.delayed->isEmpty()); // no marker
        studio.world.file(u"qv_convert"_s);
        QVERIFY(openPDF(*c, studio.pdf(u"second.pdf"_s)));
        QCOMPARE(studio.world.delayed->size(), 1);
        QCOMPARE(studio.world.delayed->at(0).delay, 500ms);
        QVERIFY(!c->converting);
        studio.world.delayed->at(0).work();
        QVERIFY(c->converting);
        QTRY_VERIFY(!c->converting);
        QVERIFY(openPDF(*c, studio.pdf(u"third.pdf"_s)));
        c.reset();
        studio.world.delayed->at(1).work(); // nobody is there
    }

    void otherwiseItDoesNot()
    {
        Studio studio;
        studio.world.file(u"qv_convert"_s);
        AlphaTabController c(studio.world.make());
        QVERIFY(openPDF(c, studio.pdf()));
        QVERIFY(studio.world.delayed->isEmpty());
    }
};

QTEST_MAIN(TestConversion)
#include "test_conversion.moc"
