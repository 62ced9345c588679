#include "pdf/conversion/PageMender.h"

#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/InkOwners.h"
#include "pdf/conversion/InkRuns.h"
#include "pdf/conversion/JoiningStrokes.h"
#include "pdf/conversion/Staves.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <span>

namespace {

using namespace PDFConverter;

/// Pixels around ink that its smoothed edges can have reached.
constexpr int fringe = 2;
/// Strokes in two gaps belong together when they lie this near to each other, in pixels.
constexpr int strokeTolerance = 6;
/// How far beyond a staff that is the first or last of the page its ink is looked for, in its spacings.
constexpr int openSpacings = 12;
/// How far above its staff a bracket's tip reaches, in spacings.
constexpr int tipSpacings = 3;
// Ink must lie nearer to tablature than two thirds of its distance to notation to count as the tablature's: what is
// lost of the notation is lost to the player, what stays of the tablature is at worst a mark that nobody can read.
constexpr int notationWeight = 2;
constexpr int tablatureWeight = 3;

/// A staff with all of its lines, as rows of the page.
struct Band {
    int top;
    /// The row after the last line's.
    int bottom;
    int spacing;
    bool isTablature;
};

/// Lines that continue a staff at its own distance: the sixth of a guitar's tablature, and those of more strings.
int bottomWithFurtherLines(const Staff &staff, const std::vector<StaffLine> &lines)
{
    constexpr int tolerance = 6;
    StaffLine last = staff.lines.back();
    for (const StaffLine &line : lines) {
        if (line.center > last.center && std::abs(line.center - last.center - staff.spacing()) <= tolerance)
            last = line;
    }
    return last.bottom + 1;
}

int inkOf(const GrayBitmap &page, const StaffLine &line)
{
    const InkRuns row(page, line.center, line.center + 1, page.width);
    const auto all = row.all();
    return std::accumulate(all.begin(), all.end(), 0, [](int sum, const InkRun &run) { return sum + run.width(); });
}

/// The staff's own five lines. Beams or ledger lines of many notes at one height look like a line at the staff's
/// distance, but hold less ink than those that run through.
std::span<const StaffLine> ownLines(const Staff &staff, std::span<const StaffLine> lines, const GrayBitmap &page)
{
    constexpr std::ptrdiff_t farthest = 2;
    const auto first = std::find_if(
        lines.begin(), lines.end(), [&staff](const StaffLine &line) { return line.center == staff.lines[0].center; });
    const std::ptrdiff_t found = first - lines.begin();
    const std::ptrdiff_t last = std::min(found + farthest, std::ssize(lines) - linesPerStaff);
    std::span<const StaffLine> best;
    int bestInk = -1;
    for (std::ptrdiff_t i = std::max<std::ptrdiff_t>(0, found - farthest); i <= last; ++i) {
        const auto five = lines.subspan(std::size_t(i), linesPerStaff);
        if (findStaves(five).empty()
            || std::abs(five.back().center - five.front().center - staff.span()) > gapsPerStaff)
            continue;
        int ink = page.width;
        for (const StaffLine &line : five)
            ink = std::min(ink, inkOf(page, line));
        if (ink > bestInk) {
            best = five;
            bestInk = ink;
        }
    }
    return best;
}

std::vector<Band> bandsOf(const GrayBitmap &page)
{
    const std::vector<StaffLine> lines = findStaffLines(page);
    const std::vector<Staff> staves = findStaves(lines);
    const std::optional<TablatureTest> isTablature = TablatureTest::of(staves);
    std::vector<Band> bands;
    for (const Staff &staff : staves) {
        if (isTablature && (*isTablature)(staff)) {
            bands.push_back({ staff.top(), bottomWithFurtherLines(staff, lines), staff.spacing(), true });
        } else if (const auto own = ownLines(staff, lines, page); !own.empty()) {
            bands.push_back({ own.front().top, own.back().bottom + 1, staff.spacing(), false });
        }
    }
    return bands;
}

/// The rows between two neighbouring staves, of which one is tablature, or between tablature and the page's edge.
struct Gap {
    const Band *upper;
    const Band *lower;
    InkRuns runs;
    std::vector<JoiningStroke> strokes;
    /// For each stroke whether it joins notation to notation, through tablature and all.
    std::vector<bool> joinsNotation;
};

class Mending final {
public:
    Mending(const GrayBitmap &rendering, GrayBitmap &page)
        : m_rendering(rendering)
        , m_page(page)
        , m_bands(bandsOf(rendering))
    {
        for (const Band &band : m_bands) {
            if (!band.isTablature && (m_spacing == 0 || band.spacing < m_spacing))
                m_spacing = band.spacing;
        }
    }

    void run()
    {
        m_page.pixels = m_rendering.pixels;
        std::vector<Gap> gaps = findGaps();
        chainStrokes(gaps);
        for (const Gap &gap : gaps)
            clearTablature(gap);
        for (const Band &band : m_bands) {
            if (band.isTablature)
                clearStaff(band, gaps);
        }
    }

private:
    quint8 *row(int y) { return m_page.pixels.data() + std::size_t(y) * std::size_t(m_page.width); }
    const quint8 *rendered(int y) const
    {
        return m_rendering.pixels.data() + std::size_t(y) * std::size_t(m_page.width);
    }

    std::vector<Gap> findGaps() const
    {
        std::vector<Gap> gaps;
        for (std::size_t i = 0; i <= m_bands.size(); ++i) {
            const Band *upper = i > 0 ? &m_bands[i - 1] : nullptr;
            const Band *lower = i < m_bands.size() ? &m_bands[i] : nullptr;
            if (!(upper && upper->isTablature) && !(lower && lower->isTablature))
                continue;
            const int top = upper ? upper->bottom : std::max(0, lower->top - openSpacings * lower->spacing);
            const int bottom
                = lower ? lower->top : std::min(m_page.height, upper->bottom + openSpacings * upper->spacing);
            InkRuns runs(m_rendering, top, std::max(top, bottom), m_page.width);
            std::vector<JoiningStroke> strokes;
            if (upper && lower)
                strokes = joiningStrokes(runs, m_spacing + m_spacing / 4);
            std::vector<bool> none(strokes.size(), false);
            gaps.push_back({ upper, lower, std::move(runs), std::move(strokes), std::move(none) });
        }
        return gaps;
    }

    static bool meet(const JoiningStroke::Columns &a, const JoiningStroke::Columns &b)
    {
        return std::abs(a.first - b.first) <= strokeTolerance && std::abs(a.end - b.end) <= strokeTolerance;
    }

    /// Marks the strokes that lead from notation to notation.
    void chainStrokes(std::vector<Gap> &gaps) const
    {
        for (std::size_t first = 0; first < gaps.size(); ++first) {
            if (!gaps[first].upper || gaps[first].upper->isTablature)
                continue;
            for (std::size_t stroke = 0; stroke < gaps[first].strokes.size(); ++stroke)
                followToNotation(gaps, first, stroke);
        }
    }

    static void followToNotation(std::vector<Gap> &gaps, std::size_t first, std::size_t stroke)
    {
        std::vector<std::size_t> chain{ stroke };
        std::size_t last = first;
        while (gaps[last].lower->isTablature) {
            const std::size_t next = last + 1;
            if (next == gaps.size() || !gaps[next].lower)
                return;
            const JoiningStroke &above = gaps[last].strokes[chain.back()];
            const std::vector<JoiningStroke> &below = gaps[next].strokes;
            const auto found = std::find_if(
                below.begin(), below.end(), [&above](const JoiningStroke &s) { return meet(above.atBottom, s.atTop); });
            if (found == below.end())
                return;
            chain.push_back(std::size_t(found - below.begin()));
            last = next;
        }
        for (std::size_t i = 0; i < chain.size(); ++i)
            gaps[first + i].joinsNotation[chain[i]] = true;
    }

    StaffClaim claimOf(const Band *band) const
    {
        if (!band)
            return {};
        if (!band->isTablature)
            return { .exists = true, .weight = notationWeight };
        return { .exists = true, .weight = tablatureWeight, .reach = band->spacing, .hasFreeStems = true };
    }

    void clearTablature(const Gap &gap)
    {
        std::vector<bool> isStroke(gap.runs.all().size(), false);
        for (const JoiningStroke &stroke : gap.strokes) {
            for (const int run : stroke.runs)
                isStroke[std::size_t(run)] = true;
        }
        int count = 0;
        const std::vector<int> patches = gap.runs.patches(isStroke, count);
        const std::vector<InkOwner> owners
            = inkOwners(gap.runs, patches, count, m_page.width, m_spacing, claimOf(gap.upper), claimOf(gap.lower));
        for (std::size_t i = 0; i < patches.size(); ++i) {
            if (patches[i] >= 0 && isTablatures(gap, owners[std::size_t(patches[i])]))
                whiten(gap.runs, gap.runs.all()[i]);
        }
        for (std::size_t i = 0; i < gap.strokes.size(); ++i) {
            if (gap.joinsNotation[i])
                continue;
            for (const int run : gap.strokes[i].runs)
                whiten(gap.runs, gap.runs.all()[std::size_t(run)]);
            if (gap.upper && !gap.upper->isTablature)
                clearBracketBeside(*gap.upper, gap.strokes[i].atTop);
        }
    }

    static bool isTablatures(const Gap &gap, InkOwner owner)
    {
        return (owner == InkOwner::Upper && gap.upper->isTablature)
            || (owner == InkOwner::Lower && gap.lower->isTablature);
    }

    /// Paints the run and what its smoothed edges left around it white, within the rows of `runs`.
    void whiten(const InkRuns &runs, const InkRun &run)
    {
        const int from = std::max(runs.top(), run.y - fringe);
        const int to = std::min(runs.bottom(), run.y + fringe + 1);
        const int first = std::max(0, run.first - fringe);
        const int end = std::min(m_page.width, run.end + fringe);
        for (int y = from; y < to; ++y) {
            quint8 *pixels = row(y);
            for (int x = first; x < end; ++x) {
                if (pixels[x] >= darkBelow)
                    pixels[x] = 255;
            }
        }
        std::fill(row(run.y) + run.first, row(run.y) + run.end, quint8(255));
    }

    /// The column where the staff's lines begin.
    int leftOf(const Band &staff) const
    {
        const InkRuns lastLine(m_rendering, staff.bottom - 1, staff.bottom, m_page.width);
        for (const InkRun &run : lastLine.all()) {
            if (run.width() > 2 * staff.spacing)
                return run.first;
        }
        return 0;
    }

    /// A bracket or brace that holds nothing but this staff and its tablature goes with the tablature. It stands before
    /// the staff's lines; a bar line does not.
    void clearBracketBeside(const Band &staff, const JoiningStroke::Columns &columns)
    {
        const int left = leftOf(staff) - fringe;
        if (columns.end > left)
            return;
        const auto meetsStroke = [&columns](const InkRun &run, int tolerance) {
            return run.first < columns.end + tolerance && columns.first < run.end + tolerance;
        };
        const int top = std::max(0, staff.top - tipSpacings * staff.spacing);
        whitenPatches(InkRuns(m_rendering, top, staff.bottom, left),
            [&](const InkRun &run) { return run.y == staff.bottom - 1 && meetsStroke(run, 0); });
        // The tip above the staff bends over its lines, and is a piece of its own to some engravers.
        const int reach = staff.spacing / 2;
        whitenPatches(InkRuns(m_rendering, top, std::max(top, staff.top - fringe), left + 2 * staff.spacing),
            [&](const InkRun &run) { return run.y >= staff.top - reach && meetsStroke(run, fringe); });
    }

    /// Paints the patches white that hold a run which is `wanted`.
    template <typename Wanted> void whitenPatches(const InkRuns &runs, const Wanted &wanted)
    {
        int count = 0;
        const std::vector<int> patches = runs.patches(std::vector<bool>(runs.all().size(), false), count);
        std::vector<bool> goes(static_cast<std::size_t>(count), false);
        for (std::size_t i = 0; i < patches.size(); ++i) {
            if (wanted(runs.all()[i]))
                goes[std::size_t(patches[i])] = true;
        }
        for (std::size_t i = 0; i < patches.size(); ++i) {
            if (goes[std::size_t(patches[i])])
                whiten(runs, runs.all()[i]);
        }
    }

    /// Leaves of the staff's own rows nothing but the strokes that lead on to notation.
    void clearStaff(const Band &staff, const std::vector<Gap> &gaps)
    {
        const int from = std::max(0, staff.top - fringe);
        const int to = std::min(m_page.height, staff.bottom + fringe);
        std::fill(row(from), row(to), quint8(255));
        for (const Gap &gap : gaps) {
            for (std::size_t i = 0; gap.lower == &staff && i < gap.strokes.size(); ++i) {
                if (!gap.joinsNotation[i])
                    continue;
                const auto [first, end] = gap.strokes[i].atBottom;
                for (int y = from; y < to; ++y)
                    std::copy(rendered(y) + first, rendered(y) + end, row(y) + first);
            }
        }
    }

    const GrayBitmap &m_rendering;
    GrayBitmap &m_page;
    const std::vector<Band> m_bands;
    /// The notation's, in pixels.
    int m_spacing = 0;
};

} // namespace

namespace PDFConverter {

void mendPage(const GrayBitmap &rendering, GrayBitmap &page) { Mending(rendering, page).run(); }

} // namespace PDFConverter
