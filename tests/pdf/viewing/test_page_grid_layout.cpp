#include "pdf/viewing/PageGridLayout.h"

#include <QTest>

namespace {

constexpr double spacing = 14;
constexpr double margin = 16;
constexpr double upright = 0.5; // twice as high as wide: easy figures

PageGridLayout grid(const std::vector<double> &aspects, int across, double width)
{
    return { aspects, { .width = width, .pagesAcross = across, .spacing = spacing, .margin = margin } };
}

PageGridLayout grid(int pages, int across, double width)
{
    return grid(std::vector<double>(size_t(pages), upright), across, width);
}

} // namespace

class TestPageGridLayout final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void columns_data()
    {
        QTest::addColumn<int>("pages");
        QTest::addColumn<int>("across");
        QTest::addColumn<int>("columns");
        QTest::newRow("as asked") << 10 << 3 << 3;
        QTest::newRow("no more than pages") << 2 << 4 << 2;
        QTest::newRow("below one") << 5 << 0 << 1;
        QTest::newRow("far below one") << 5 << -7 << 1;
        QTest::newRow("one page") << 1 << 6 << 1;
        QTest::newRow("no page") << 0 << 6 << 1;
    }

    void columns()
    {
        QFETCH(int, pages);
        QFETCH(int, across);
        QTEST(grid(pages, across, 1000).columns(), "columns");
    }

    void cellWidths()
    {
        QCOMPARE(grid(10, 2, 1000).cellWidth(), (1000 - 32 - 14) / 2.0);
        QCOMPARE(grid(10, 2, 1000).cellWidth(), 477.0);
        QCOMPARE(grid(2, 4, 1000).cellWidth(), 477.0);
        QCOMPARE(grid(10, 1, 1000).cellWidth(), 968.0);
        QCOMPARE(grid(10, 6, 1000).cellWidth(), (1000 - 32 - 5 * 14) / 6.0);
    }

    void halfPages()
    {
        // Rows of 968 pixels at 16, 998 and so on.
        const PageGridLayout layout = grid(std::vector<double>(3, 1.0), 1, 1000);
        QCOMPARE(layout.halfPageFrom(0, 1, 800), 16.0 + 484);
        QCOMPARE(layout.halfPageFrom(16, 1, 800), 16.0 + 484);
        QCOMPARE(layout.halfPageFrom(16.4, 1, 800), 16.0 + 484);
        QCOMPARE(layout.halfPageFrom(500, 1, 800), 998.0);
        QCOMPARE(layout.halfPageFrom(998, -1, 800), 500.0);
        QCOMPARE(layout.halfPageFrom(700, -1, 800), 500.0);
        // Nothing is passed over that was not in view.
        QCOMPARE(layout.halfPageFrom(16, 1, 300), 316.0);
        QCOMPARE(layout.halfPageFrom(998, -1, 300), 698.0);
        QCOMPARE(layout.halfPageFrom(16, -1, 300), -284.0);
    }

    void pagesStandInRows()
    {
        const PageGridLayout layout = grid(5, 2, 1000);
        QCOMPARE(layout.cell(0), QRectF(16, 16, 477, 954));
        QCOMPARE(layout.cell(1), QRectF(16 + 477 + 14, 16, 477, 954));
        QCOMPARE(layout.cell(2), QRectF(16, 16 + 954 + 14, 477, 954));
        QCOMPARE(layout.cell(4), QRectF(16, 16 + 2 * (954 + 14), 477, 954));
        QCOMPARE(layout.height(), 16 + 3 * 954.0 + 2 * 14 + 16);
        // The right margin is as wide as the left one.
        QCOMPARE(layout.cell(1).right(), 1000.0 - 16);
    }

    void aRowIsAsHighAsItsHighestPageAndCentresTheOthers()
    {
        const PageGridLayout layout = grid({ 2, 0.5, 1 }, 2, 1000);
        QCOMPARE(layout.cell(1), QRectF(507, 16, 477, 954));
        QCOMPARE(layout.cell(0), QRectF(16, 16 + (954 - 238.5) / 2, 477, 238.5));
        QCOMPARE(layout.cell(2), QRectF(16, 16 + 954 + 14, 477, 477));
    }

    void whatIsVisible_data()
    {
        QTest::addColumn<double>("top");
        QTest::addColumn<double>("bottom");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("last");
        // Rows of 954 at 16, 984 and 1952; the last one holds one page.
        QTest::newRow("top") << 0.0 << 500.0 << 0 << 1;
        QTest::newRow("two rows") << 900.0 << 1000.0 << 0 << 3;
        QTest::newRow("exactly the second row") << 984.0 << 1938.0 << 2 << 3;
        QTest::newRow("between rows") << 971.0 << 983.0 << 2 << 1;
        QTest::newRow("end") << 2800.0 << 9000.0 << 4 << 4;
        QTest::newRow("beyond") << 9000.0 << 9900.0 << 6 << 4;
        QTest::newRow("before") << -500.0 << -1.0 << 0 << -1;
        QTest::newRow("all") << -1e300 << 1e300 << 0 << 4;
    }

    void whatIsVisible()
    {
        QFETCH(double, top);
        QFETCH(double, bottom);
        const PageGridLayout::Range range = grid(5, 2, 1000).pagesBetween(top, bottom);
        QTEST(range.first, "first");
        QTEST(range.last, "last");
    }

    void noRoomAndNoPagesDoNoHarm()
    {
        const PageGridLayout narrow = grid(10, 6, 40);
        QVERIFY(narrow.cellWidth() < 0);
        QCOMPARE(narrow.cell(9).size(), QSizeF(0, 0));
        QCOMPARE(narrow.height(), 2 * 16 + 14.0);
        const PageGridLayout empty = grid(0, 2, 1000);
        QCOMPARE(empty.height(), 32.0);
        QCOMPARE(empty.pagesBetween(0, 1000), (PageGridLayout::Range{ 0, -1 }));
        QCOMPARE(PageGridLayout().pageCount(), 0);
    }

    void aLongDocumentIsSearchedNotWalked()
    {
        const PageGridLayout layout = grid(1'000'000, 2, 1000);
        PageGridLayout::Range range;
        QBENCHMARK_ONCE
        {
            for (int i = 0; i < 100'000; ++i)
                range = layout.pagesBetween(400'000'000, 400'001'000);
        }
        QVERIFY(range.contains(826'446));
    }
};

QTEST_APPLESS_MAIN(TestPageGridLayout)
#include "test_page_grid_layout.moc"
