#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/PageRasters.h"
#include "tests/pdf/conversion/Files.h"
#include "tests/support/TestPDFs.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <chrono>
#include <sys/stat.h>
#include <thread>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

namespace {

const QByteArray letter = "0 0 612 792";

/// The rectangle that holds everything that is not white; null for a blank page.
QRect inkOf(const GrayBitmap &bitmap)
{
    QRect ink;
    for (int y = 0; y < bitmap.height; ++y) {
        const quint8 *row = bitmap.pixels.data() + std::size_t(y) * std::size_t(bitmap.width);
        const quint8 *end = row + bitmap.width;
        const auto isInk = [](quint8 p) { return p < 128; };
        const quint8 *first = std::find_if(row, end, isInk);
        if (first == end)
            continue;
        const auto last = std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(row), isInk);
        ink |= QRect(QPoint(int(first - row), y), QPoint(int(last.base() - row) - 1, y));
    }
    return ink;
}

quint8 pixel(const GrayBitmap &bitmap, int x, int y)
{
    return bitmap.pixels[std::size_t(y) * std::size_t(bitmap.width) + std::size_t(x)];
}

} // namespace

class TestPageRasters final : public QObject {
    Q_OBJECT

private:
    const QTemporaryDir m_folder;

    Result<GrayBitmap> rendered(const QByteArray &file, int index = 0) const
    {
        const auto pages = PageRasters::open(writeFile(m_folder.path(), u"page.pdf"_s, file));
        if (!pages)
            return Failure{ u"no PDF"_s };
        Result<std::optional<GrayBitmap>> page = pages->render(index);
        if (!page)
            return page.failure();
        if (!*page)
            return Failure{ u"no page"_s };
        return std::move(**page);
    }

    Result<GrayBitmap> rendered(const TestPDFs::Page &page) const { return rendered(TestPDFs::file({ page })); }

private Q_SLOTS:
    void aLetterPage()
    {
        const Result<GrayBitmap> bitmap = rendered({ .media = letter });
        QVERIFY(bitmap);
        QCOMPARE(bitmap->width, 5100);
        QCOMPARE(bitmap->height, 6600);
        QCOMPARE(bitmap->pixels.size(), std::size_t(5100 * 6600));
        QVERIFY(std::all_of(bitmap->pixels.begin(), bitmap->pixels.end(), [](quint8 p) { return p == 255; }));
    }

    void sizesAreRounded_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QSize>("size");
        QTest::newRow("A4") << QByteArray("0 0 595.276 841.89") << QSize(4961, 7016);
        QTest::newRow("corners in the other order") << QByteArray("72 144 0 0") << QSize(600, 1200);
        QTest::newRow("away from the origin") << QByteArray("-100.5 200.25 -28.5 344.25") << QSize(600, 1200);
        QTest::newRow("one pixel") << QByteArray("0 0 0.1 72") << QSize(1, 600);
    }

    void sizesAreRounded()
    {
        QFETCH(QByteArray, box);
        const Result<GrayBitmap> bitmap = rendered({ .media = box });
        QVERIFY(bitmap);
        QTEST(QSize(bitmap->width, bitmap->height), "size");
    }

    void anEmptyPage()
    {
        for (const char *box : { "0 0 0.05 72", "0 0 72 0.05" }) {
            const Result<GrayBitmap> bitmap = rendered({ .media = box });
            QVERIFY(!bitmap);
            QCOMPARE(bitmap.failure().message, u"Empty PDF page."_s);
        }
    }

    void moreThanAGibibyte()
    {
        // 32768 pixels are 3932.16 units: one row more is one too many.
        const Result<GrayBitmap> tooLarge = rendered({ .media = "0 0 3932.16 3932.28" });
        QVERIFY(!tooLarge);
        QCOMPARE(tooLarge.failure().message, u"Could not rasterize a PDF page."_s);
        QVERIFY(!rendered({ .media = "0 0 99999999 99999999" }));
    }

    void everyPixelIsInItsPlace_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<int>("rotation");
        QTest::addColumn<QByteArray>("rectangle");
        QTest::addColumn<QRect>("ink");
        // 3 units are 25 pixels. The page is 60 by 90 units: 500 by 750 pixels.
        const QByteArray box = "0 0 60 90";
        QTest::newRow("upright") << box << 0 << QByteArray("6 9 12 24") << QRect(50, 475, 100, 200);
        QTest::newRow("the lowest row") << box << 0 << QByteArray("0 0 60 3") << QRect(0, 725, 500, 25);
        QTest::newRow("the last column") << box << 0 << QByteArray("57 0 3 90") << QRect(475, 0, 25, 750);
        QTest::newRow("a quarter") << box << 90 << QByteArray("6 9 12 24") << QRect(75, 50, 200, 100);
        QTest::newRow("a half") << box << 180 << QByteArray("6 9 12 24") << QRect(350, 75, 100, 200);
        QTest::newRow("three quarters") << box << 270 << QByteArray("6 9 12 24") << QRect(475, 350, 200, 100);
        QTest::newRow("backwards") << box << -90 << QByteArray("6 9 12 24") << QRect(475, 350, 200, 100);
        QTest::newRow("elsewhere") << QByteArray("-30 300 30 390") << 0 << QByteArray("-24 309 12 24")
                                   << QRect(50, 475, 100, 200);
        QTest::newRow("elsewhere, turned")
            << QByteArray("-30 300 30 390") << 90 << QByteArray("-24 309 12 24") << QRect(75, 50, 200, 100);
        // 595.276 by 841.89 units, not whole ones: the scale must not give way.
        const QByteArray a4 = "0 0 595.276 841.89";
        QTest::newRow("A4, far corner") << a4 << 0 << QByteArray("585 831.89 6 6") << QRect(4875, 33, 50, 50);
        QTest::newRow("A4, turned") << a4 << 90 << QByteArray("585 831.89 6 6") << QRect(6932, 4875, 50, 50);
        QTest::newRow("not from whole units")
            << QByteArray("0.52 0.76 60.52 90.76") << 0 << QByteArray("6.52 9.76 12 24") << QRect(50, 475, 100, 200);
    }

    void everyPixelIsInItsPlace()
    {
        QFETCH(QByteArray, box);
        QFETCH(int, rotation);
        QFETCH(QByteArray, rectangle);
        QFETCH(QRect, ink);
        const Result<GrayBitmap> bitmap
            = rendered({ .media = box, .rotation = QByteArray::number(rotation), .drawing = rectangle + " re f" });
        QVERIFY(bitmap);
        const QRect found = inkOf(*bitmap);
        // An edge between two pixels may fall to either.
        const QByteArray told = QByteArray::number(found.x()) + ' ' + QByteArray::number(found.y()) + ' '
            + QByteArray::number(found.width()) + ' ' + QByteArray::number(found.height());
        QVERIFY2(std::abs(found.left() - ink.left()) <= 1 && std::abs(found.right() - ink.right()) <= 1
                && std::abs(found.top() - ink.top()) <= 1 && std::abs(found.bottom() - ink.bottom()) <= 1,
            told.constData());
    }

    void bandsLeaveNoSeams()
    {
        // A black page is black in every row, and a slope is as long as one drawn in one piece.
        const Result<GrayBitmap> black = rendered({ .media = "0 0 300 1500", .drawing = "0 0 300 1500 re f" });
        QVERIFY(black);
        QVERIFY(std::all_of(black->pixels.begin(), black->pixels.end(), [](quint8 p) { return p == 0; }));

        const Result<GrayBitmap> slope = rendered({ .media = "0 0 300 1500", .drawing = "0 0 m 300 1500 l 300 0 l f" });
        QVERIFY(slope);
        int last = -1;
        for (int y = slope->height - 1; y >= 0; --y) {
            int x = 0;
            while (x < slope->width && pixel(*slope, x, y) >= 128)
                ++x;
            QVERIFY(x == last || x == last + 1);
            last = x;
        }
        QVERIFY(last >= slope->width - 2);
    }

    void theMediaBoxWholeWhereACropBoxIsSmaller()
    {
        const Result<GrayBitmap> bitmap
            = rendered({ .media = "0 0 60 90", .crop = "30 45 50 60", .drawing = "6 9 12 24 re f" });
        QVERIFY(bitmap);
        QCOMPARE(QSize(bitmap->width, bitmap->height), QSize(500, 750));
        QVERIFY(inkOf(*bitmap).intersects(QRect(60, 500, 10, 10)));
    }

    void onWhite()
    {
        const QByteArray content = "0.5 g 0 0 30 30 re f 1 0 0 rg 30 0 30 30 re f 1 g 0 30 30 30 re f "
                                   "0 0 1 rg 30 30 30 30 re f 0 1 0 rg 0 60 30 30 re f /half gs 0 g 30 60 30 30 re f";
        const Result<GrayBitmap> bitmap = rendered({ .media = "0 0 60 90",
            .drawing = content,
            .entries = "/Resources << /ExtGState << /half << /ca 0.5 >> >> >>" });
        QVERIFY(bitmap);
        const auto near = [&](int x, int y, int gray) { return std::abs(pixel(*bitmap, x, y) - gray) <= 2; };
        QVERIFY(near(100, 650, 128));
        QVERIFY(near(350, 650, 76)); // red
        QVERIFY(near(100, 400, 255));
        QVERIFY(near(350, 400, 29)); // blue
        QVERIFY(near(100, 100, 150)); // green
        QVERIFY(near(350, 100, 128)); // black at half strength
    }

    void hiddenLayersStayHidden()
    {
        const QByteArray resources
            = "/Resources << /Properties << /shown << /Type /OCG /Name (shown) >> /hidden 5 0 R >> >>";
        const QByteArray content = "/OC /hidden BDC 30 0 30 90 re f EMC 0 0 3 3 re f";
        const QByteArray catalog = "/OCProperties << /OCGs [5 0 R] /D << /OFF [5 0 R] >> >>";
        // The second page's object has number 5; a layer of that number is what the catalog needs, so it stands in.
        QByteArray file = TestPDFs::file(
            { { .media = "0 0 60 90", .drawing = content, .entries = resources }, { .media = "0 0 9 9" } }, {},
            catalog);
        file.replace("<< /Type /Page /Parent 2 0 R /Resources << >> /MediaBox [0 0 9 9]",
            "<< /Type /OCG /Name (off) /Was [0 0 9 9]");
        file.replace("3 0 R 5 0 R ", "3 0 R       ");
        file.replace("/Count 2", "/Count 1");
        const Result<GrayBitmap> bitmap = rendered(file);
        QVERIFY(bitmap);
        QCOMPARE(inkOf(*bitmap), QRect(0, 725, 25, 25));
    }

    void annotationsAreNoMusic()
    {
        const Result<GrayBitmap> bitmap = rendered({ .media = "0 0 60 90",
            .drawing = "0 0 3 3 re f",
            .entries = "/Annots [<< /Type /Annot /Subtype /Square /Rect [9 9 50 80] /C [0 0 0] /IC [0 0 0] >>]" });
        QVERIFY(bitmap);
        QCOMPARE(inkOf(*bitmap), QRect(0, 725, 25, 25));
    }

    void stoppedWhileItIsDrawn()
    {
        std::stop_source stop;
        const auto pages = PageRasters::open(
            writeFile(m_folder.path(), u"stop.pdf"_s, TestPDFs::file({ TestPDFs::endlessPage() })), stop.get_token());
        QVERIFY(pages);
        const std::jthread stopper([&stop] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            stop.request_stop();
        });
        // Would take a minute.
        const auto result = pages->render(0);
        QVERIFY(!result);
        QCOMPARE(result.failure().message, u"Could not rasterize a PDF page."_s);
    }

    void aPageThatTakesTooLongLeavesTheOthers()
    {
        PDFProcess::Bounds bounds = PDFProcess::forConversion;
        bounds.page = std::chrono::milliseconds(3000);
        const auto pages = PageRasters::open(writeFile(m_folder.path(), u"mixed.pdf"_s,
                                                 TestPDFs::file({ TestPDFs::endlessPage(), { .media = "0 0 60 90" } })),
            {}, bounds);
        QVERIFY(pages);
        const auto endless = pages->render(0);
        QVERIFY(!endless);
        QCOMPARE(endless.failure().message, u"Could not rasterize a PDF page."_s);
        QVERIFY(pages->render(1));
    }

    void aPageTakesOneRoundTrip()
    {
        const qint64 before = PDFProcess::traffic().requests;
        QVERIFY(rendered({ .media = letter, .drawing = "0 0 612 792 re f" }));
        QCOMPARE(PDFProcess::traffic().requests - before, 2);
    }

    void offTheMainThread()
    {
        // A warning of the library's about threads would fail this test.
        bool drawn = false;
        std::thread([&] { drawn = bool(rendered({ .media = "0 0 60 90", .drawing = "0 0 3 3 re f" })); }).join();
        QVERIFY(drawn);
    }

    void pagesThatAreNone()
    {
        QVERIFY(!PageRasters::open(m_folder.filePath(u"missing.pdf"_s)));
        QVERIFY(!PageRasters::open(writeFile(m_folder.path(), u"text.pdf"_s, "no PDF at all")));
        QVERIFY(!PageRasters::open(writeFile(m_folder.path(), u"empty.pdf"_s, TestPDFs::file({}))));
        const auto pages
            = PageRasters::open(writeFile(m_folder.path(), u"one.pdf"_s, TestPDFs::file({ { .media = letter } })));
        QVERIFY(pages);
        QVERIFY(*pages->render(0));
        QVERIFY(!*pages->render(1));
        QVERIFY(!*pages->render(-1));
    }

    void aPipeKeepsNobodyWaiting()
    {
        const QString path = m_folder.filePath(u"pipe.pdf"_s);
        QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
        QVERIFY(!PageRasters::open(path));
    }
};

QTEST_GUILESS_MAIN(TestPageRasters)
#include "test_page_rasters.moc"
