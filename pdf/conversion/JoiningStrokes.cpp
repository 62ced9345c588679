#include "pdf/conversion/JoiningStrokes.h"

#include "pdf/conversion/InkRuns.h"

#include <algorithm>
#include <optional>

namespace {

using namespace PDFConverter;

/// Rows beside a staff line whose ink can belong to the line's own edge.
constexpr int edgeRows = 3;
/// By how much a stroke may widen from where it begins. Beyond, something crosses it.
constexpr int mostGrowth = 6;
/// Rows in which a stroke may be interrupted: the seam between two of its pieces.
constexpr int mostMissing = 2;
/// Something that crosses a stroke in more than one of this many rows is no crossing.
constexpr int crossedRowsPart = 2;

/// The run in row `y` that covers any of `columns`, by its place among all runs.
std::optional<int> runAt(const InkRuns &runs, int y, const JoiningStroke::Columns &columns)
{
    const auto row = runs.row(y);
    const auto run
        = std::partition_point(row.begin(), row.end(), [&columns](const InkRun &r) { return r.end <= columns.first; });
    if (run == row.end() || run->first >= columns.end)
        return std::nullopt;
    return runs.startOf(y) + int(run - row.begin());
}

std::optional<JoiningStroke> follow(const InkRuns &runs, const InkRun &beginning)
{
    JoiningStroke stroke;
    stroke.atTop = stroke.atBottom = { beginning.first, beginning.end };
    const int mostWidth = beginning.width() + mostGrowth;
    int missing = 0;
    int crossed = 0;
    for (int y = runs.top(); y < runs.bottom(); ++y) {
        const std::optional<int> place = runAt(runs, y, stroke.atBottom);
        if (!place) {
            if (++missing > mostMissing)
                return std::nullopt;
            continue;
        }
        missing = 0;
        const InkRun &run = runs.all()[std::size_t(*place)];
        if (run.width() > mostWidth) {
            ++crossed;
            continue;
        }
        stroke.runs.push_back(*place);
        stroke.atBottom = { run.first, run.end };
    }
    const int rows = runs.bottom() - runs.top();
    return crossed * crossedRowsPart > rows ? std::nullopt : std::optional(stroke);
}

} // namespace

namespace PDFConverter {

std::vector<JoiningStroke> joiningStrokes(const InkRuns &runs, int mostWidth)
{
    std::vector<JoiningStroke> strokes;
    if (runs.bottom() - runs.top() <= 2 * edgeRows)
        return strokes;
    for (const InkRun &run : runs.row(runs.top() + edgeRows)) {
        if (run.width() > mostWidth)
            continue;
        if (std::optional<JoiningStroke> stroke = follow(runs, run))
            strokes.push_back(std::move(*stroke));
    }
    return strokes;
}

} // namespace PDFConverter
