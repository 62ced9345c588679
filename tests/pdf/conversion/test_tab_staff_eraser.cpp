#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/TabStaffEraser.h"

#include <QTest>

#include <algorithm>

using PDFConverter::eraseTabStaves;

namespace {

/// A white page on which lines can be ruled.
struct Page : GrayBitmap {
    Page(int pageWidth, int pageHeight)
        : GrayBitmap{ std::vector<quint8>(std::size_t(pageWidth) * std::size_t(pageHeight), 255), pageWidth,
            pageHeight }
    {
    }

    quint8 *row(int y) { return pixels.data() + std::size_t(y) * std::size_t(width); }

    Page &rule(std::initializer_list<int> rows, int dark = -1, quint8 value = 0)
    {
        for (const int y : rows)
            std::fill_n(row(y), dark < 0 ? width : dark, value);
        return *this;
    }

    /// Lines of one row each: the first at `top`, the others after the gaps.
    Page &staff(int top, std::initializer_list<int> gaps)
    {
        rule({ top });
        for (const int gap : gaps)
            rule({ top += gap });
        return *this;
    }

    Page &staff(int top, int gap) { return staff(top, { gap, gap, gap, gap }); }

    bool isWhite(int y)
    {
        return std::all_of(row(y), row(y) + width, [](quint8 p) { return p == 255; });
    }
    bool isBlack(int y)
    {
        return std::all_of(row(y), row(y) + width, [](quint8 p) { return p == 0; });
    }
};

constexpr int lines[] = { 0, 1, 2, 3, 4 };

} // namespace

class TestTabStaffEraser final : public QObject {
    Q_OBJECT

private:
    static void staysAsItWas(Page page)
    {
        const Page before = page;
        QVERIFY(!eraseTabStaves(page));
        QVERIFY(page.pixels == before.pixels);
    }

    /// Whether `page` counts as having a staff of a kind of its own beside the wide one that is added at its end.
    static bool hasNarrowStaff(Page page, int wideTop, int wideGap)
    {
        return eraseTabStaves(page.staff(wideTop, wideGap));
    }

private Q_SLOTS:
    void tablatureGoesNotationStays()
    {
        Page page(100, 1200);
        page.staff(100, 40).staff(500, 62).rule({ 500 + 5 * 62 }); // six lines of tablature
        page.rule({ 400, 900 }, 7, 90);
        QVERIFY(eraseTabStaves(page));
        for (const int line : lines)
            QVERIFY(page.isBlack(100 + 40 * line));
        // Two spacings above the first line, three below the fifth.
        const int from = 500 - 2 * 62;
        const int to = 500 + 4 * 62 + 3 * 62;
        for (int y = from; y < to; ++y)
            QVERIFY2(page.isWhite(y), qPrintable(QString::number(y)));
        QCOMPARE(page.row(900)[0], quint8(255));
    }

    void theBandEndsWhereItShould()
    {
        Page page(50, 1000);
        page.staff(100, 40).staff(500, 62);
        const int from = 500 - 2 * 62;
        const int to = 500 + 4 * 62 + 3 * 62;
        page.rule({ from - 1, from, to - 1, to }, 10, 127); // too short for line rows
        QVERIFY(eraseTabStaves(page));
        QCOMPARE(page.row(from - 1)[0], quint8(127));
        QVERIFY(page.isWhite(from));
        QVERIFY(page.isWhite(to - 1));
        QCOMPARE(page.row(to)[0], quint8(127));
    }

    void nothingToFind()
    {
        GrayBitmap none{ {}, 0, 0 };
        QVERIFY(!eraseTabStaves(none));
        GrayBitmap flat{ {}, 40, 0 };
        QVERIFY(!eraseTabStaves(flat));
        staysAsItWas(Page(40, 400));
        staysAsItWas(Page(40, 400).staff(10, { 30, 30, 30 }));
        staysAsItWas(Page(40, 400).staff(10, 30)); // one staff
    }

    void oneKindOfStaffStays()
    {
        staysAsItWas(Page(40, 1200).staff(10, 40).staff(400, 40).staff(800, 40));
        staysAsItWas(Page(40, 1200).staff(10, 40).staff(400, 47));
        // 40 and 47.75
        staysAsItWas(Page(40, 1200).staff(10, 40).staff(400, { 48, 48, 48, 47 }));
        Page apart = Page(40, 1200).staff(10, 40).staff(500, 48);
        QVERIFY(eraseTabStaves(apart));
    }

    void aLineRowIsDarkerThanItsShare_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("threshold");
        QTest::newRow("no multiple") << 101 << 35;
        QTest::newRow("20") << 20 << 7;
        // 0.35 is a little less than 7/20 in binary, which shows at some widths.
        QTest::newRow("180") << 180 << 62;
        QTest::newRow("letter") << 5100 << 1785;
        QTest::newRow("A4") << 4961 << 1736;
        QTest::newRow("more than a byte counts in each lane") << 40000 << 14000;
    }

    void aLineRowIsDarkerThanItsShare()
    {
        QFETCH(int, width);
        QFETCH(int, threshold);
        Page page(width, 800);
        page.staff(10, 30);
        const auto withDark = [&page](int dark) {
            Page tried = page;
            for (const int line : lines)
                tried.rule({ 300 + 50 * line }, dark);
            return tried;
        };
        staysAsItWas(withDark(threshold));
        Page more = withDark(threshold + 1);
        QVERIFY(eraseTabStaves(more));
    }

    void theThresholdIsTheOneOfRealNumbersAtEveryWidth()
    {
        // The widest raster that can be is far below; a page of 600 dots per inch and a metre is 24000.
        for (int width = 1; width <= 24000; width += width < 300 ? 1 : 389) {
            const int threshold = int(double(width) * 0.35);
            Page page(width, 210);
            page.staff(0, 20);
            for (const int line : lines)
                page.rule({ 100 + 28 * line - 4 }, std::min(width, threshold + 1));
            Page less(width, 210);
            less.staff(0, 20);
            for (const int line : lines)
                less.rule({ 100 + 28 * line - 4 }, threshold);
            QVERIFY2(eraseTabStaves(page), qPrintable(QString::number(width)));
            QVERIFY2(!eraseTabStaves(less), qPrintable(QString::number(width)));
        }
    }

    void halfOfTheGraysAreDark()
    {
        Page page(64, 800);
        page.staff(10, 30);
        for (const int line : lines)
            page.rule({ 300 + 50 * line }, -1, 128);
        staysAsItWas(page);
        for (const int line : lines)
            page.rule({ 300 + 50 * line }, -1, 127);
        QVERIFY(eraseTabStaves(page));
    }

    void oneLightRowIsBridged()
    {
        // Each line of the upper staff has a twin two rows below it: one line. Three rows below: two lines, no staff.
        Page bridged(40, 800);
        bridged.staff(10, 30).staff(12, 30);
        QVERIFY(hasNarrowStaff(bridged, 300, 50));
        Page apart(40, 800);
        apart.staff(10, 30).staff(13, 30);
        QVERIFY(!hasNarrowStaff(apart, 300, 50));
    }

    void aLinesCentreIsItsMiddleRow()
    {
        // Rows 100, 101 and 103 make a line with its centre at 101; 80 rows below is the nearest that its staff can
        // end.
        Page outer(40, 1000);
        outer.rule({ 100, 101, 103 }).rule({ 121, 141, 161, 181 });
        QVERIFY(hasNarrowStaff(outer, 400, 50));
        Page tooLow(40, 1000);
        tooLow.rule({ 100, 101, 103, 104 }).rule({ 121, 141, 161, 181 });
        // centre 102: one row too near
        QVERIFY(!hasNarrowStaff(tooLow, 400, 50));
    }

    void theBandStartsAtTheLinesTopRowAndEndsAtTheLastOnesBottom()
    {
        Page page(40, 1200);
        page.staff(10, 30);
        page.rule({ 500, 501, 503 }).rule({ 550, 600, 650, 651, 700, 701, 702 });
        // centres 501, 550, 600, 650, 701: the spacing is 50; top 500, bottom 702
        page.rule({ 399, 400, 851, 852 }, 5);
        QVERIFY(eraseTabStaves(page));
        QCOMPARE(page.row(399)[0], quint8(0));
        QVERIFY(page.isWhite(400));
        QVERIFY(page.isWhite(851));
        QCOMPARE(page.row(852)[0], quint8(0));
    }

    void gapsMayDifferBySix()
    {
        QVERIFY(hasNarrowStaff(Page(40, 1000).staff(10, { 20, 20, 26, 20 }), 400, 50));
        QVERIFY(!hasNarrowStaff(Page(40, 1000).staff(10, { 20, 20, 27, 20 }), 400, 50));
    }

    void aMissMovesOnByOneLine()
    {
        // The first line stands alone: the five after it are the staff.
        QVERIFY(hasNarrowStaff(Page(40, 1000).rule({ 3 }).staff(60, 25), 400, 50));
        // After a staff the search goes on behind it: these nine lines are one staff, not two.
        Page page(40, 2000);
        page.staff(10, { 20, 20, 20, 20, 20, 20, 20, 20 });
        staysAsItWas(page);
    }

    void theMeanGapHasLimits()
    {
        QVERIFY(hasNarrowStaff(Page(40, 1000).staff(10, 20), 400, 50));
        QVERIFY(!hasNarrowStaff(Page(40, 1000).staff(10, { 20, 20, 20, 19 }), 400, 50)); // 19.75
        QVERIFY(hasNarrowStaff(Page(40, 1000).staff(10, 20), 400, 90));
        QVERIFY(!hasNarrowStaff(Page(40, 1200).staff(10, 20).staff(400, { 90, 90, 90, 91 }), 950, 20)); // 90.25
    }

    void stavesTooNarrowToBeStavesTakeNoPart()
    {
        staysAsItWas(Page(40, 1000).staff(10, 10).staff(200, 25).staff(600, 25));
    }

    void theBandStaysOnThePage()
    {
        Page page(30, 640);
        page.staff(20, 50).staff(300, 30).staff(435, 50);
        QVERIFY(eraseTabStaves(page));
        QVERIFY(page.isWhite(0));
        QVERIFY(page.isWhite(20));
        QVERIFY(page.isWhite(639));
        QCOMPARE(page.pixels.size(), std::size_t(30 * 640));
        QVERIFY(page.isWhite(300)); // what lies in the bands goes with them
    }

    void aStaffInTheMiddleOfTheTwoKindsStays()
    {
        Page page(30, 3000);
        page.staff(10, 30).staff(600, 40).staff(1500, 50);
        QVERIFY(eraseTabStaves(page));
        QVERIFY(page.isBlack(10));
        QVERIFY(page.isBlack(600));
        QVERIFY(page.isWhite(1500));
        Page above(30, 3000);
        above.staff(10, 30).staff(600, { 40, 40, 40, 41 }).staff(1500, 50);
        QVERIFY(eraseTabStaves(above));
        QVERIFY(above.isWhite(600));
    }

    void theSpacingOfTheBandIsTruncated()
    {
        Page page(30, 1500);
        page.staff(10, 30).staff(500, { 50, 50, 50, 53 }); // 50.75
        page.rule({ 399, 400, 852, 853 }, 5);
        QVERIFY(eraseTabStaves(page));
        QCOMPARE(page.row(399)[0], quint8(0));
        QVERIFY(page.isWhite(400));
        QVERIFY(page.isWhite(852));
        QCOMPARE(page.row(853)[0], quint8(0));
    }
};

QTEST_APPLESS_MAIN(TestTabStaffEraser)
#include "test_tab_staff_eraser.moc"
