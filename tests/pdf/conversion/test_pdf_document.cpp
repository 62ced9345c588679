#include "pdf/conversion/PDFDocument.h"
#include "tests/support/TestPDFs.h"
#include "tests/support/TestSurroundings.h"

#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QTest>

#include <array>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;

class TestPDFDocument final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatOpens_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("pages");
        QTest::newRow("a page") << TestPDFs::colored(1) << 1;
        QTest::newRow("many") << TestPDFs::colored(1000) << 1000;
        QTest::newRow("broken table") << TestPDFs::withBrokenTable(TestPDFs::colored(5)) << 5;
        QTest::newRow("rubbish before and after") << "rubbish\n" + TestPDFs::colored(2) + "rubbish" << 2;
    }

    void whatOpens()
    {
        QFETCH(QByteArray, bytes);
        const TestSurroundings world;
        const auto document = PDFDocument::open(world.file(u"x.pdf"_s, bytes).toLocalFile());
        QVERIFY(document);
        QTEST(document->pageCount(), "pages");
        const int last = document->pageCount() - 1;
        QCOMPARE(document->picture(last, QSize(50, 70)).pixel(25, 35), TestPDFs::colorOf(last));
    }

    void whatDoesNot()
    {
        const TestSurroundings world;
        const auto opens = [&world](const QString &name) { return bool(PDFDocument::open(world.path(name))); };
        QVERIFY(!opens(u"missing.pdf"_s));
        QVERIFY(!PDFDocument::open({}));
        QVERIFY(QDir().mkdir(world.path(u"folder.pdf"_s)));
        QVERIFY(!opens(u"folder.pdf"_s));
        QCOMPARE(::mkfifo(qPrintable(world.path(u"pipe.pdf"_s)), 0600), 0);
        QVERIFY(!opens(u"pipe.pdf"_s));
        world.file(u"text.pdf"_s, "no PDF at all");
        QVERIFY(!opens(u"text.pdf"_s));
        world.file(u"empty.pdf"_s, {});
        QVERIFY(!opens(u"empty.pdf"_s));
        world.file(u"half.pdf"_s, TestPDFs::colored(9).left(60));
        QVERIFY(!opens(u"half.pdf"_s));
        world.file(u"no pages.pdf"_s, TestPDFs::file({}));
        QVERIFY(!opens(u"no pages.pdf"_s));
    }

    void passwords()
    {
        const TestSurroundings world;
        const QString path = world.file(u"x.pdf"_s, TestPDFs::colored(3)).toLocalFile();
        QVERIFY(TestPDFs::encrypt(path, ""));
        const auto document = PDFDocument::open(path);
        QVERIFY(document);
        QCOMPARE(document->pageCount(), 3);
        QCOMPARE(document->picture(2, QSize(50, 70)).pixel(25, 35), TestPDFs::colorOf(2));
        QVERIFY(TestPDFs::encrypt(path, "secret"));
        QVERIFY(!PDFDocument::open(path));
    }

    void theBoxesAreThoseOfWhatIsDrawn()
    {
        // Whatever stands in the file, a picture in the shape of the box is a whole page and not a stretched one: a
        // square in the drawing stays one.
        const QByteArray square = "0 0 1 rg 100 100 100 100 re f";
        const QList<TestPDFs::Page> pages{ { .media = "0 0 400 300", .drawing = square },
            { .media = "0 0 400 300", .rotation = "90", .drawing = square },
            { .media = "0 0 400 300", .crop = "50 50 350 250", .drawing = square },
            { .media = "0 0 400 300", .crop = "0 0 0 0", .drawing = square }, { .media = {}, .drawing = square },
            { .media = "0 0 0 0", .drawing = square },
            { .media = "0 0 400 300", .crop = "90 -50 900 210", .rotation = "-90", .drawing = square } };
        const TestSurroundings world;
        const auto document = PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::file(pages)).toLocalFile());
        QVERIFY(document);
        for (int index = 0; index < document->pageCount(); ++index) {
            const PageBox *box = document->box(index);
            QSize size = box->crop.size().toSize();
            if (box->rotation % 180 != 0)
                size.transpose();
            const QImage picture = document->picture(index, 2 * size);
            QRect blue;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x) {
                    if (picture.pixel(x, y) == qRgb(0, 0, 255))
                        blue |= QRect(x, y, 1, 1);
                }
            }
            const QByteArray what = QByteArray::number(index) + ": " + QByteArray::number(blue.width()) + " by "
                + QByteArray::number(blue.height());
            QVERIFY2(std::abs(blue.width() - 200) <= 2 && std::abs(blue.height() - 200) <= 2, what.constData());
        }
        QCOMPARE(document->box(7), nullptr);
        QCOMPARE(document->box(-1), nullptr);
    }

    void anyThreadMayDrawAndLetGo()
    {
        const TestSurroundings world;
        auto document = PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::colored(20)).toLocalFile());
        QVERIFY(document);
        std::atomic<int> right = 0;
        {
            std::array<std::jthread, 4> threads;
            for (std::jthread &thread : threads) {
                thread = std::jthread([&right, document] {
                    for (int page = 0; page < 20; ++page)
                        right += document->picture(page, QSize(50, 70)).pixel(25, 35) == TestPDFs::colorOf(page);
                });
            }
            document.reset();
        }
        QCOMPARE(right, 80);
    }

    void aFileThatGoesAwayIsStillThere()
    {
        const TestSurroundings world;
        const QString path = world.file(u"x.pdf"_s, TestPDFs::colored(3)).toLocalFile();
        const auto document = PDFDocument::open(path);
        QVERIFY(QFile::remove(path));
        QCOMPARE(document->picture(1, QSize(50, 70)).pixel(25, 35), TestPDFs::colorOf(1));
    }

    void aPageThatTakesTooLongLeavesTheOthers()
    {
        const TestSurroundings world;
        PDFProcess::Bounds bounds = PDFProcess::forViewing;
        bounds.page = std::chrono::milliseconds(3000);
        const QByteArray green = "0 1 0 rg 0 0 595 842 re f";
        const auto document = PDFDocument::open(
            world
                .file(
                    u"x.pdf"_s, TestPDFs::file({ { .drawing = green }, TestPDFs::endlessPage(), { .drawing = green } }))
                .toLocalFile(),
            {}, bounds);
        QVERIFY(document);
        const QSize size(50, 70);
        QVERIFY(!document->picture(0, size).isNull());
        const int first = document->processId();
        QVERIFY(document->picture(1, size).isNull());
        QCOMPARE(document->picture(2, size).pixel(25, 35), qRgb(0, 255, 0));
        QVERIFY(document->processId() != first);
        // It is not tried again: the process that draws stays.
        const int second = document->processId();
        QVERIFY(document->picture(1, size).isNull());
        QCOMPARE(document->processId(), second);
    }

    void theDeathOfTheProcessCostsOnePage()
    {
        const TestSurroundings world;
        const auto document = PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::colored(3)).toLocalFile());
        QVERIFY(document);
        QCOMPARE(::kill(document->processId(), SIGKILL), 0);
        QVERIFY(document->picture(0, QSize(50, 70)).isNull());
        QCOMPARE(document->picture(1, QSize(50, 70)).pixel(25, 35), TestPDFs::colorOf(1));
    }

    void aPageThatTakesAllMemory()
    {
        const TestSurroundings world;
        const auto document = PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::boundlessForm()).toLocalFile());
        QVERIFY(document);
        const bool drawn = !document->picture(0, QSize(50, 70)).isNull();
        // The drawing library of Debian 13 ends such a form by itself. Goes when Debian 12 is dropped.
        QCOMPARE(drawn, QT_VERSION >= QT_VERSION_CHECK(6, 8, 0));
        rusage used{};
        QCOMPARE(::getrusage(RUSAGE_CHILDREN, &used), 0);
        QVERIFY2(used.ru_maxrss < 800 << 10, qPrintable(QString::number(qint64(used.ru_maxrss))));
    }

    void whatKillsTheProcessDoesNotOpen()
    {
        const TestSurroundings world;
        QVERIFY(!PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::fatalTable()).toLocalFile()));
    }

    void openingEndsWithItsTime()
    {
        const TestSurroundings world;
        PDFProcess::Bounds bounds = PDFProcess::forViewing;
        bounds.opening = std::chrono::milliseconds(1);
        QVERIFY(!PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::colored(5000)).toLocalFile(), {}, bounds));
    }

    void drawingEndsWhenItIsStopped()
    {
        const TestSurroundings world;
        const auto document
            = PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::file({ TestPDFs::endlessPage(), {} })).toLocalFile());
        QVERIFY(document);
        std::stop_source stop;
        QElapsedTimer timer;
        timer.start();
        const std::jthread stopper([&stop] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            stop.request_stop();
        });
        QVERIFY(document->picture(0, QSize(50, 70), stop.get_token()).isNull());
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(!document->picture(1, QSize(50, 70)).isNull());
    }

    void aPageTreeWithoutBottomDoesNotTakeTheProgramAlong()
    {
        const TestSurroundings world;
        const auto opens = [&world](int depth) {
            return bool(PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::nested(depth)).toLocalFile()));
        };
        QVERIFY(opens(100));
        QVERIFY(!opens(1'100));
        QVERIFY(!opens(20'000));
    }
};

QTEST_GUILESS_MAIN(TestPDFDocument)
#include "test_pdf_document.moc"
