#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/PageRasters.h"
#include "pdf/conversion/TabStaffEraser.h"

#include <QTest>

#include <algorithm>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

namespace {

/// Staves found from the picture's own ink, in another way than the eraser's: runs of long lines at one distance.
struct FoundStaff {
    int lines = 0;
    int top = 0;
    int bottom = 0;
};

int darkest(const GrayBitmap &bitmap, int y)
{
    const quint8 *row = bitmap.pixels.data() + std::size_t(y) * std::size_t(bitmap.width);
    return int(std::count_if(row, row + bitmap.width, [](quint8 p) { return p < 128; }));
}

/// The middle rows of lines that run through at least half of the page.
QList<int> longLines(const GrayBitmap &bitmap)
{
    QList<int> middles;
    for (int y = 0; y < bitmap.height; ++y) {
        if (2 * darkest(bitmap, y) <= bitmap.width)
            continue;
        int end = y;
        while (end + 1 < bitmap.height && 2 * darkest(bitmap, end + 1) > bitmap.width)
            ++end;
        middles << (y + end) / 2;
        y = end;
    }
    return middles;
}

QList<FoundStaff> stavesOf(const GrayBitmap &bitmap)
{
    QList<FoundStaff> staves;
    int previous = -1000;
    for (const int y : longLines(bitmap)) {
        // Lines of a staff are at most 70 pixels apart on these pages, staves farther.
        if (y - previous > 75)
            staves.append({ 0, y, y });
        ++staves.last().lines;
        staves.last().bottom = y;
        previous = y;
    }
    return staves;
}

int countOf(const QList<FoundStaff> &staves, int lines)
{
    return int(std::count_if(staves.begin(), staves.end(), [lines](const FoundStaff &s) { return s.lines == lines; }));
}

} // namespace

class TestEngravedPages final : public QObject {
    Q_OBJECT

private:
    static std::unique_ptr<PageRasters> engraved(const char *name)
    {
        return PageRasters::open(QStringLiteral(SHEETS) + u'/' + QString::fromLatin1(name) + u".pdf"_s);
    }

    static GrayBitmap rendered(PageRasters &pages, int index)
    {
        Result<std::optional<GrayBitmap>> page = pages.render(index);
        if (!page)
            qFatal("%s", qPrintable(page.failure().message));
        return std::move(**page);
    }

    /// Erases, and checks that tablature is gone and notation is all there.
    static void erasesTablatureAlone(GrayBitmap bitmap)
    {
        const QList<FoundStaff> before = stavesOf(bitmap);
        const int notation = countOf(before, 5);
        QVERIFY(notation >= 1);
        QCOMPARE(countOf(before, 6), notation);
        const GrayBitmap whole = bitmap;
        QVERIFY(eraseTabStaves(bitmap));
        for (const FoundStaff &staff : before) {
            const auto row
                = [](const GrayBitmap &page, int y) { return page.pixels.begin() + std::ptrdiff_t(y) * page.width; };
            const auto from = row(bitmap, staff.top);
            const auto to = row(bitmap, staff.bottom + 1);
            if (staff.lines == 5)
                QVERIFY(std::equal(from, to, row(whole, staff.top)));
            else
                QVERIFY(std::all_of(from, to, [](quint8 p) { return p == 255; }));
        }
        QCOMPARE(countOf(stavesOf(bitmap), 5), notation);
        QCOMPARE(stavesOf(bitmap).size(), notation);
    }

private Q_SLOTS:
    void notationWithTablature_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QList<QSize>>("sizes");
        const QSize a4(4961, 7016);
        QTest::newRow("upright") << QByteArray("notation-and-tab") << QList<QSize>{ a4, a4 };
        QTest::newRow("rotated") << QByteArray("rotated") << QList<QSize>{ a4, a4 };
        QTest::newRow("cropped") << QByteArray("cropped") << QList<QSize>{ a4, a4 };
        QTest::newRow("locked with an empty password") << QByteArray("locked") << QList<QSize>{ a4, a4 };
        QTest::newRow("broken table") << QByteArray("broken") << QList<QSize>{ a4, a4 };
        QTest::newRow("mixed sizes") << QByteArray(
            "mixed") << QList<QSize>{ a4, a4, { 5100, 6600 }, { 5100, 6600 }, { 3496, 4961 }, { 3496, 4961 } };
    }

    void notationWithTablature()
    {
        QFETCH(QByteArray, name);
        QFETCH(QList<QSize>, sizes);
        const std::unique_ptr<PageRasters> pages = engraved(name.constData());
        QVERIFY(pages);
        QCOMPARE(pages->count(), sizes.size());
        for (int index = 0; index < pages->count(); ++index) {
            const GrayBitmap bitmap = rendered(*pages, index);
            QCOMPARE(QSize(bitmap.width, bitmap.height), sizes[index]);
            if (countOf(stavesOf(bitmap), 6) > 0)
                erasesTablatureAlone(bitmap);
            if (QTest::currentTestFailed())
                return;
        }
        QVERIFY(countOf(stavesOf(rendered(*pages, 0)), 6) >= 4);
    }

    void theRotatedSheetReadsLikeTheUprightOne()
    {
        const GrayBitmap upright = rendered(*engraved("notation-and-tab"), 0);
        const GrayBitmap rotated = rendered(*engraved("rotated"), 0);
        const QList<int> expected = longLines(upright);
        const QList<int> found = longLines(rotated);
        QCOMPARE(found.size(), expected.size());
        for (qsizetype i = 0; i < found.size(); ++i)
            QVERIFY(std::abs(found[i] - expected[i]) <= 1);
    }

    void oneKindOfStaffIsLeftAlone_data()
    {
        QTest::addColumn<int>("lines");
        QTest::newRow("notation") << 5;
        QTest::newRow("tab") << 6;
    }

    void oneKindOfStaffIsLeftAlone()
    {
        QFETCH(int, lines);
        const std::unique_ptr<PageRasters> pages = engraved(QTest::currentDataTag());
        QVERIFY(pages);
        for (int index = 0; index < pages->count(); ++index) {
            GrayBitmap bitmap = rendered(*pages, index);
            const QList<FoundStaff> staves = stavesOf(bitmap);
            QVERIFY(staves.size() >= 2);
            QCOMPARE(countOf(staves, lines), staves.size());
            const GrayBitmap before = bitmap;
            QVERIFY(!eraseTabStaves(bitmap));
            QVERIFY(bitmap.pixels == before.pixels);
        }
    }

    void aPasswordThatIsNotEmpty() { QVERIFY(!engraved("secret")); }

    void twoHundredPages()
    {
        const std::unique_ptr<PageRasters> pages = engraved("pages-200");
        QVERIFY(pages);
        QCOMPARE(pages->count(), 200);
        // The last page is the second of the original.
        const GrayBitmap last = rendered(*pages, 199);
        QVERIFY(last.pixels == rendered(*engraved("notation-and-tab"), 1).pixels);
    }
};

QTEST_GUILESS_MAIN(TestEngravedPages)
#include "test_engraved_pages.moc"
