#include "controller/AlphaTabController.h"
#include "pdf/conversion/PDFDocument.h"
#include "tests/support/NotRoot.h"
#include "tests/support/OpenedPDF.h"
#include "tests/support/TestPDFs.h"
#include "tests/support/TestSurroundings.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPdfWriter>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

class TestLoading final : public QObject {
    Q_OBJECT

private:
    static QUrl writePdf(const TestSurroundings &world, const QString &name)
    {
        QPdfWriter writer(world.path(name));
        QPainter painter(&writer);
        painter.drawLine(0, 0, 100, 100);
        return QUrl::fromLocalFile(world.path(name));
    }

    static void makeReady(AlphaTabController &controller, TestSurroundings &world)
    {
        controller.handle({ { u"type"_s, u"ready"_s } });
        world.engine->take();
    }

    /// Holds a file so that no other program may open it for now, as a file server does.
    class Lease final {
        Q_DISABLE_COPY_MOVE(Lease)

    public:
        explicit Lease(const QUrl &url)
            : m_file(::open(qPrintable(url.toLocalFile()), O_RDWR | O_CLOEXEC))
        {
            // Who waits is announced by a signal.
            ::signal(SIGIO, SIG_IGN);
            m_held = ::fcntl(m_file, F_SETLEASE, F_WRLCK) == 0;
        }
        ~Lease() { ::close(m_file); }

        bool isHeld() const { return m_held; }
        /// Whether somebody waits for the file.
        bool isWaitedFor() const { return ::fcntl(m_file, F_GETLEASE) != F_WRLCK; }

    private:
        int m_file;
        bool m_held = false;
    };

    static void readInThreads(TestSurroundings &world)
    {
        world.inBackground = [](std::function<void()> work) { std::thread(std::move(work)).detach(); };
    }

private Q_SLOTS:
    void aFileIsReadInAThread()
    {
        TestSurroundings world;
        readInThreads(world);
        AlphaTabController c(world.make());
        makeReady(c, world);
        const QUrl url = world.file(u"a.gp"_s, "x");
        c.load(url);
        QVERIFY(world.engine->scripts.isEmpty());
        QTRY_COMPARE(c.recentFiles.value(), QList<QUrl>{ url });
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.loadBase64('eA==')"_s });
    }

    void aFileThatDoesNotAnswerKeepsNobodyWaiting_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("score") << u"held.gp"_s;
        QTest::newRow("PDF") << u"held.pdf"_s;
    }

    void aFileThatDoesNotAnswerKeepsNobodyWaiting()
    {
        QFETCH(QString, name);
        TestSurroundings world;
        readInThreads(world);
        const QUrl good = world.file(u"good.gp"_s, "good");
        const QUrl held = world.file(name, "held");
        auto lease = std::make_unique<Lease>(held);
        QVERIFY(lease->isHeld());
        {
            AlphaTabController c(world.make());
            makeReady(c, world);
            c.load(held);
            if (name.endsWith(u"gp"_s))
                QTRY_VERIFY(lease->isWaitedFor());
            c.load(good);
            QTRY_COMPARE(c.recentFiles.value(), QList<QUrl>{ good });
            c.load(held);
            // Nor does the end.
        }
        lease.reset();
        QTest::qWait(50);
        QCOMPARE(world.engine->take().size(), 1);
        QVERIFY(world.log->isEmpty());
    }

    void aFileOfMoreThan200MBIsRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("line");
        QTest::newRow("score") << u"huge.gp"_s << u"failed to read "_s;
        QTest::newRow("PDF") << u"huge.pdf"_s << u"failed to open PDF "_s;
    }

    void aFileOfMoreThan200MBIsRefused()
    {
        QFETCH(QString, name);
        QFETCH(QString, line);
        TestSurroundings world;
        AlphaTabController c(world.make());
        makeReady(c, world);
        const QUrl url = world.file(name, TestPDFs::colored(1));
        QVERIFY(QFile::resize(url.toLocalFile(), 200'000'001)); // without a block on the disk
        c.load(url);
        QTRY_COMPARE(*world.log,
            QStringList{ u"[Quaverly] "_s + line + url.toLocalFile() + u": The file is larger than 200 MB."_s });
        QVERIFY(world.engine->scripts.isEmpty());
        QVERIFY(c.recentFiles.value().isEmpty());
        QVERIFY(!c.pdfURL.value());
    }

    void aFileThatIsReadWhenThePageEndsOpensInTheNextOne()
    {
        TestSurroundings world;
        std::function<void()> reading;
        world.inBackground = [&reading](std::function<void()> work) { reading = std::move(work); };
        AlphaTabController c(world.make());
        makeReady(c, world);
        world.engine->loads.clear();
        c.load(world.file(u"a.gp"_s, "x"));
        c.pageHealthChanged(PageHealth::Ended);
        reading();
        QCOMPARE(world.engine->loads.size(), 1);
        c.handle({ { u"type"_s, u"ready"_s } });
        reading();
        QVERIFY(world.engine->take().contains(u"window.qv.loadBase64('eA==')"_s));
    }

    void theDemoWinsOverAFileThatIsStillBeingRead()
    {
        TestSurroundings world;
        std::function<void()> reading;
        world.inBackground = [&reading](std::function<void()> work) { reading = std::move(work); };
        AlphaTabController c(world.make());
        makeReady(c, world);
        c.load(world.file(u"a.gp"_s, "x"));
        c.js(u"window.qv.loadSample()"_s);
        reading();
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.loadSample()"_s });
    }

    void theTables()
    {
        const QStringList scores{ u"gp"_s, u"gp3"_s, u"gp4"_s, u"gp5"_s, u"gpx"_s, u"xml"_s, u"musicxml"_s, u"mxl"_s };
        QCOMPARE(AlphaTabController::scoreExtensions(), scores);
        QCOMPARE(AlphaTabController::openableExtensions(), scores + QStringList{ u"pdf"_s });
    }

    void aFileGoesToThePageWhole()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        makeReady(c, world);
        const QUrl url = world.file(u"a.b.gp"_s, QByteArray("\0\xff*", 3));
        c.load(url);
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.loadBase64('AP8q')"_s });
        QCOMPARE(c.recentFiles.value(), QList<QUrl>{ url });
        QVERIFY(!c.hasScore);
        QTRY_COMPARE(*world.windowTitles, QStringList{ u"a.b"_s });
        QVERIFY(world.log->isEmpty());
    }

    void anyOtherExtensionGoesToTheEngineToo()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        makeReady(c, world);
        c.load(world.file(u"notes.txt"_s, "x"));
        c.load(world.file(u"noextension"_s, "y"));
        QCOMPARE(world.engine->take(),
            (QStringList{ u"window.qv.loadBase64('eA==')"_s, u"window.qv.loadBase64('eQ==')"_s }));
    }

    void unreadableFilesLeaveOneLineAndNothingElse_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << u"missing.gp5"_s;
        QTest::newRow("directory") << u"folder.gp5"_s;
        QTest::newRow("pipe") << u"pipe.gp5"_s;
    }

    void unreadableFilesLeaveOneLineAndNothingElse()
    {
        QFETCH(QString, name);
        TestSurroundings world;
        const QString path = world.path(name);
        if (name.startsWith(u"folder"_s))
            QVERIFY(QDir().mkdir(path));
        if (name.startsWith(u"pipe"_s))
            QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
        AlphaTabController c(world.make());
        makeReady(c, world);
        const QUrl good = world.file(u"good.gp5"_s);
        c.load(good);
        QTRY_COMPARE(world.windowTitles->size(), 1);
        c.recentFiles = QList<QUrl>{ QUrl::fromLocalFile(path), good };
        world.engine->take();

        c.load(QUrl::fromLocalFile(path));
        QCOMPARE(world.log->size(), 1);
        QVERIFY2(world.log->constFirst().startsWith(u"[Quaverly] failed to read "_s + path + u": "_s),
            qPrintable(world.log->constFirst()));
        QVERIFY(world.log->constFirst().size() > (u"[Quaverly] failed to read "_s + path + u": "_s).size());
        QVERIFY(world.engine->scripts.isEmpty());
        QCOMPARE(c.recentFiles.value(), QList<QUrl>{ good });
        QCOMPARE(world.defaults()->textList(u"recentFiles"_s), QStringList{ good.toLocalFile() });
        QCoreApplication::processEvents();
        QCOMPARE(world.windowTitles->size(), 1);
        QVERIFY(!c.conversionError.value());

        c.load(good);
        QCOMPARE(world.engine->take().size(), 1);
    }

    void anAddressThatIsNoLocalFileLeavesOneLine()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        makeReady(c, world);
        c.load(QUrl(u"https://example.org/song.gp5"_s));
        QCOMPARE(*world.log, QStringList{ u"[Quaverly] failed to read : Not a local file"_s });
        QVERIFY(world.engine->scripts.isEmpty());
    }

    void aFileWithoutPermission()
    {
        TestSurroundings world;
        const QUrl url = world.file(u"locked.gp5"_s);
        QFile::setPermissions(url.toLocalFile(), {});
        const NotRoot user(world.path({}));
        QVERIFY(!QFile(url.toLocalFile()).open(QIODevice::ReadOnly));
        AlphaTabController c(world.make());
        makeReady(c, world);
        c.load(url);
        // That user cannot write the settings of the test, which is logged, too.
        QCOMPARE(world.log->filter(u"failed to read"_s).size(), 1);
        QVERIFY(world.engine->scripts.isEmpty());
    }

    void aPdfIsShownWhateverTheCase()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        const QUrl url = writePdf(world, u"SCORE.PDF"_s);
        QVERIFY(openPDF(c, url)); // before "ready": a PDF needs no engine
        QVERIFY(c.pdfDocument.value());
        QCOMPARE(c.pdfDocument.value()->pageCount(), 1);
        QCOMPARE(c.pdfURL.value(), url);
        QCOMPARE(c.recentFiles.value(), QList<QUrl>{ url });
        QTRY_COMPARE(*world.windowTitles, QStringList{ u"SCORE"_s });
        QVERIFY(world.engine->scripts.isEmpty());
    }

    void aScoreClosesThePdf()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        makeReady(c, world);
        QVERIFY(openPDF(c, writePdf(world, u"pages.pdf"_s)));
        QVERIFY(c.pdfDocument.value());
        c.load(world.file(u"a.gp"_s));
        QVERIFY(!c.pdfDocument.value());
        QVERIFY(!c.pdfURL.value());
    }

    void unreadablePdfsLeaveOneLineAndNothingElse_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : { "missing", "folder", "pipe", "text", "cut off", "secret", "no pages" })
            QTest::newRow(name) << QString::fromLatin1(name) + u".pdf"_s;
    }

    void unreadablePdfsLeaveOneLineAndNothingElse()
    {
        QFETCH(QString, name);
        TestSurroundings world;
        world.file(u"text.pdf"_s, "no PDF at all");
        world.file(u"cut off.pdf"_s, TestPDFs::colored(9).left(60));
        world.file(u"no pages.pdf"_s, TestPDFs::file({}));
        QVERIFY(TestPDFs::encrypt(world.file(u"secret.pdf"_s, TestPDFs::colored(1)).toLocalFile(), "secret"));
        QVERIFY(QDir().mkdir(world.path(u"folder.pdf"_s)));
        QCOMPARE(::mkfifo(qPrintable(world.path(u"pipe.pdf"_s)), 0600), 0);
        AlphaTabController c(world.make());
        const QUrl good = writePdf(world, u"good.pdf"_s);
        QVERIFY(openPDF(c, good));
        const auto before = c.pdfDocument.value();
        QTRY_COMPARE(world.windowTitles->size(), 1);
        const QUrl bad = QUrl::fromLocalFile(world.path(name));
        c.recentFiles = QList<QUrl>{ bad, good };

        c.load(bad);
        QTRY_VERIFY(!world.log->isEmpty());
        QCOMPARE(*world.log, QStringList{ u"[Quaverly] failed to open PDF "_s + bad.toLocalFile() });
        QCOMPARE(c.recentFiles.value(), QList<QUrl>{ good });
        QCOMPARE(world.defaults()->textList(u"recentFiles"_s), QStringList{ good.toLocalFile() });
        QCOMPARE(c.pdfURL.value(), good);
        QCOMPARE(c.pdfDocument.value(), before);
        QVERIFY(!c.conversionError.value());
        QCoreApplication::processEvents();
        QCOMPARE(world.windowTitles->size(), 1);
    }

    void protectedAndDamagedPdfsThatCanBeReadOpen()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        const QUrl encrypted = world.file(u"encrypted.pdf"_s, TestPDFs::colored(2));
        QVERIFY(TestPDFs::encrypt(encrypted.toLocalFile(), ""));
        QVERIFY(openPDF(c, encrypted));
        QCOMPARE(c.pdfDocument.value()->pageCount(), 2);
        const QUrl damaged = world.file(u"damaged.pdf"_s, TestPDFs::withBrokenTable(TestPDFs::colored(3)));
        QVERIFY(openPDF(c, damaged));
        QCOMPARE(c.pdfDocument.value()->pageCount(), 3);
        QVERIFY(world.log->isEmpty());
    }

    void theLatestWinsOverAPdfThatIsStillBeingOpened()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        makeReady(c, world);
        const QUrl pdf = writePdf(world, u"pages.pdf"_s);
        c.load(pdf);
        c.load(world.file(u"a.gp"_s));
        QVERIFY(openPDF(c, writePdf(world, u"other.pdf"_s)));
        QVERIFY(!c.recentFiles.value().contains(pdf));
        QVERIFY(world.log->isEmpty());
    }

    void aPdfWhosePagesGoInCirclesKeepsNobodyWaiting()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.load(world.file(u"loop.pdf"_s, TestPDFs::endlessPageTree()));
        // Neither the next file nor the end waits for it.
        QVERIFY(openPDF(c, writePdf(world, u"good.pdf"_s)));
        c.load(QUrl::fromLocalFile(world.path(u"loop.pdf"_s)));
    }

    void theOpenPanel()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        makeReady(c, world);
        c.presentOpenPanel();
        QCOMPARE(world.dialogs->opened, 1);
        QCOMPARE(world.dialogs->extensions, AlphaTabController::openableExtensions());
        QVERIFY(world.engine->scripts.isEmpty());
        world.dialogs->fileToOpen = world.file(u"a.gp"_s, "x");
        c.presentOpenPanel();
        QCOMPARE(world.engine->take(), QStringList{ u"window.qv.loadBase64('eA==')"_s });
    }
};

QTEST_MAIN(TestLoading)
#include "test_loading.moc"
