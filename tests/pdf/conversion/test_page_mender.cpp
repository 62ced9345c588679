#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/PageMender.h"
#include "pdf/conversion/PageRasters.h"
#include "pdf/conversion/TabStaffEraser.h"

#include <QTest>

#include <algorithm>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

namespace {

constexpr int interline = 42; // on the engraved pages, in pixels

struct FoundStaff {
    int top;
    int bottom;
};

bool isDark(const GrayBitmap &page, int x, int y)
{
    return page.pixels[std::size_t(y) * std::size_t(page.width) + std::size_t(x)] < 128;
}

/// The notation staves of a page that has no tablature, by rows that are dark through at least half of it.
QList<FoundStaff> stavesOf(const GrayBitmap &page)
{
    QList<int> lines;
    for (int y = 0; y < page.height; ++y) {
        const quint8 *row = page.pixels.data() + std::size_t(y) * std::size_t(page.width);
        if (2 * std::count_if(row, row + page.width, [](quint8 p) { return p < 128; }) <= page.width)
            continue;
        if (lines.isEmpty() || y - lines.last() > 4)
            lines << y;
        else
            lines.last() = y;
    }
    QList<FoundStaff> staves;
    for (const int y : std::as_const(lines)) {
        if (staves.isEmpty() || y - staves.last().bottom > 2 * interline)
            staves.append({ y, y });
        staves.last().bottom = y;
    }
    return staves;
}

/// The first column behind the stroke that a system's staves begin with.
int behindSystemStroke(const GrayBitmap &page, const FoundStaff &staff)
{
    constexpr int stroke = 16;
    const quint8 *line = page.pixels.data() + std::size_t(staff.bottom) * std::size_t(page.width);
    constexpr int lineLength = 200;
    const quint8 *run
        = std::search_n(line, line + page.width, lineLength, true, [](quint8 p, bool) { return p < 128; });
    return int(run - line) + stroke;
}

/// How many columns from `left` on run through the whole staff without a break, and beyond it by more than one
/// interline.
int columnsThatStickOut(const GrayBitmap &page, const FoundStaff &staff, int left)
{
    int columns = 0;
    for (int x = left; x < page.width; ++x) {
        const auto runsThrough = [&](int from, int to) {
            for (int y = from; y <= to; ++y) {
                if (!isDark(page, x, y))
                    return false;
            }
            return true;
        };
        if (!runsThrough(staff.top, staff.bottom))
            continue;
        const int beyond = interline + 6;
        columns += runsThrough(staff.top - beyond, staff.top) || runsThrough(staff.bottom, staff.bottom + beyond);
    }
    return columns;
}

GrayBitmap rendered(const QString &name, int index)
{
    const auto pages = PageRasters::open(QStringLiteral(SHEETS) + u'/' + name + u".pdf"_s);
    if (!pages)
        qFatal("no PDF %s", qPrintable(name));
    Result<std::optional<GrayBitmap>> page = pages->render(index);
    if (!page || !*page)
        qFatal("no page %d of %s", index, qPrintable(name));
    return std::move(**page);
}

/// A white page on which a test draws.
struct Page : GrayBitmap {
    Page()
        : GrayBitmap{ std::vector<quint8>(std::size_t(1000) * 1400, 255), 1000, 1400 }
    {
    }

    Page &box(int left, int top, int right, int bottom)
    {
        for (int y = top; y < bottom; ++y)
            std::fill_n(pixels.data() + std::size_t(y) * std::size_t(width) + left, right - left, quint8(0));
        return *this;
    }

    /// Lines of three rows, from column 100 to 900.
    Page &staff(int top, int spacing, int lines)
    {
        for (int line = 0; line < lines; ++line)
            box(100, top + line * spacing, 900, top + line * spacing + 3);
        return *this;
    }

    /// The two staves of one system: notation at 200 to 363, tablature at 600 to 903.
    Page &system() { return staff(200, 40, 5).staff(600, 60, 6); }

    bool isInk(int x, int y) const { return isDark(*this, x, y); }

    Page mended() const
    {
        Page page = *this;
        if (!eraseTabStaves(page))
            qFatal("no tablature");
        mendPage(*this, page);
        return page;
    }
};

} // namespace

class TestPageMender final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatStaysIsTheSameMusicWithoutTablature_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("page");
        QTest::addColumn<int>("staves");
        QTest::addColumn<bool>("severalInASystem");
        QTest::newRow("bar lines joined, two voices, the low E") << u"tab-joined"_s << 0 << 2 << false;
        QTest::newRow("a song, systems close together") << u"tab-song"_s << 0 << 8 << true;
        QTest::newRow("its second page") << u"tab-song"_s << 1 << 2 << true;
        QTest::newRow("stems on the tablature, chord names") << u"tab-stems"_s << 0 << 5 << false;
        QTest::newRow("two guitars in one system") << u"tab-duo"_s << 0 << 4 << true;
    }

    void whatStaysIsTheSameMusicWithoutTablature()
    {
        QFETCH(QString, name);
        QFETCH(int, page);
        QFETCH(int, staves);
        QFETCH(bool, severalInASystem);
        const GrayBitmap whole = rendered(name, page);
        const GrayBitmap expected = rendered(name + u"-notation"_s, page);
        GrayBitmap mended = whole;
        QVERIFY(eraseTabStaves(mended));
        mendPage(whole, mended);
        const QList<FoundStaff> found = stavesOf(expected);
        QCOMPARE(found.size(), staves);
        for (const FoundStaff &staff : found) {
            // The stroke that holds several staves together stays; that page has it nowhere.
            const int from = severalInASystem ? behindSystemStroke(expected, staff) : 0;
            int ink = 0;
            int lost = 0;
            int left = 0;
            for (int y = staff.top - 5 * interline; y < staff.bottom + 5 * interline; ++y) {
                for (int x = from; x < whole.width; ++x) {
                    const bool wanted = isDark(expected, x, y);
                    const bool there = isDark(mended, x, y);
                    ink += wanted;
                    lost += wanted && !there;
                    left += there && !wanted;
                }
            }
            QVERIFY2(
                100 * (lost + left) < ink, qPrintable(u"%1 of %2 lost, %3 left over"_s.arg(lost).arg(ink).arg(left)));
            // What a stroke through a staff needs to be a bar line at all, is that it ends with the staff.
            QVERIFY2(columnsThatStickOut(mended, staff, from) <= columnsThatStickOut(expected, staff, from),
                qPrintable(u"at row %1"_s.arg(staff.top)));
        }
    }

    void whatTheEraserAloneLeavesIsNot()
    {
        // Keeps the comparison above honest: it has to see what was wrong before.
        const GrayBitmap expected = rendered(u"tab-joined-notation"_s, 0);
        GrayBitmap erased = rendered(u"tab-joined"_s, 0);
        QVERIFY(eraseTabStaves(erased));
        QVERIFY(columnsThatStickOut(erased, stavesOf(expected).first(), 0) > 0);
    }

    void joinedBarLinesEndWithTheNotation()
    {
        const Page page = Page().system().box(896, 200, 900, 903).mended();
        QVERIFY(page.isInk(898, 362));
        for (int y = 364; y < 1000; ++y)
            QVERIFY2(!page.isInk(898, y), qPrintable(QString::number(y)));
    }

    void whatHangsBelowTheNotationStays()
    {
        // Ledger lines one interline apart, the last of them nearer to the tablature than to the staff.
        Page page = Page().system();
        for (const int y : { 402, 442, 482, 522 })
            page.box(500, y, 560, y + 3);
        page.box(510, 524, 550, 558);
        const Page mended = page.mended();
        for (const int y : { 403, 443, 483, 523, 540, 556 })
            QVERIFY2(mended.isInk(530, y), qPrintable(QString::number(y)));
    }

    void whatStandsOnTheTablatureGoes()
    {
        // A digit on the first line, a mark close above it, and a stem below the sixth that touches nothing.
        const Page page
            = Page().system().box(300, 580, 330, 622).box(290, 560, 340, 566).box(700, 930, 704, 1050).mended();
        QVERIFY(!page.isInk(310, 585));
        QVERIFY(!page.isInk(310, 563));
        QVERIFY(!page.isInk(702, 1000));
    }

    void theNextSystemIsComplete()
    {
        // Its chord names lie in the eraser's rows; one hangs on to its staff by the others alone.
        Page page = Page().system().staff(1150, 40, 5);
        page.box(200, 1040, 240, 1080).box(210, 1090, 230, 1150).box(600, 1040, 640, 1080);
        const Page mended = page.mended();
        QVERIFY(mended.isInk(220, 1060));
        QVERIFY(mended.isInk(620, 1060));
        QVERIFY(mended.isInk(220, 1120));
    }

    void whatLiesFarFromAllOfItStays()
    {
        const Page page = Page().system().box(400, 1200, 600, 1230).mended();
        QVERIFY(page.isInk(500, 1215));
    }

    void strokesToNotationBelowStayWhole()
    {
        const Page page = Page().system().staff(1100, 40, 5).box(100, 200, 104, 1263).box(500, 200, 504, 903).mended();
        for (int y = 200; y < 1263; ++y)
            QVERIFY2(page.isInk(102, y), qPrintable(QString::number(y)));
        QVERIFY(!page.isInk(502, 450));
        QVERIFY(!page.isInk(502, 700));
    }

    void aBracketAroundNotationAndItsTablatureGoes()
    {
        const Page page = Page().system().box(60, 190, 78, 913).box(60, 170, 90, 189).mended();
        for (const int y : { 180, 200, 300, 362, 450, 905 })
            QVERIFY2(!page.isInk(70, y), qPrintable(QString::number(y)));
    }
};

QTEST_GUILESS_MAIN(TestPageMender)
#include "test_page_mender.moc"
