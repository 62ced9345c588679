#include "pdf/conversion/InkOwners.h"

#include "pdf/conversion/InkRuns.h"

#include <QtGlobal>
#include <queue>

#include <algorithm>
#include <limits>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace {

using namespace PDFConverter;

/// Rows beside a staff in which ink touches it, whatever a blurred edge left light.
constexpr int touchingRows = 3;

// The chamfer's distances from a cell to the next: 5 to the side and 7 across come within 3 % of the true distance.
constexpr int sideways = 5;
constexpr int across = 7;
/// Cells of the grid, to a spacing of the notation: what is nearer than a cell counts as touching.
constexpr int cellsPerSpacing = 6;
/// How far apart letters on one baseline count as being, in cells.
constexpr int letterGapCells = 3;
/// By how many pixels the feet of letters may miss their baseline.
constexpr int baselineTolerance = 2;
constexpr int nowhere = std::numeric_limits<int>::max() / 2;

/// Which patch is nearest to each cell, and how far it is.
class NearestPatches final {
public:
    NearestPatches(int columns, int rows)
        : m_columns(columns)
        , m_rows(rows)
        , m_cells(std::size_t(columns) * std::size_t(rows))
    {
    }

    struct Cell {
        int patch = -1;
        int distance = nowhere;
    };

    int columns() const { return m_columns; }
    int rows() const { return m_rows; }
    Cell &at(int column, int row) { return m_cells[std::size_t(row) * std::size_t(m_columns) + std::size_t(column)]; }

    void spread()
    {
        for (int row = 0; row < m_rows; ++row) {
            for (int column = 0; column < m_columns; ++column) {
                reach(column, row, column - 1, row, sideways);
                reach(column, row, column - 1, row - 1, across);
                reach(column, row, column, row - 1, sideways);
                reach(column, row, column + 1, row - 1, across);
            }
        }
        for (int row = m_rows - 1; row >= 0; --row) {
            for (int column = m_columns - 1; column >= 0; --column) {
                reach(column, row, column + 1, row, sideways);
                reach(column, row, column + 1, row + 1, across);
                reach(column, row, column, row + 1, sideways);
                reach(column, row, column - 1, row + 1, across);
            }
        }
    }

private:
    void reach(int column, int row, int fromColumn, int fromRow, int step)
    {
        if (fromColumn < 0 || fromColumn >= m_columns || fromRow < 0 || fromRow >= m_rows)
            return;
        const Cell &from = at(fromColumn, fromRow);
        Cell &cell = at(column, row);
        if (from.distance + step < cell.distance)
            cell = { from.patch, from.distance + step };
    }

    int m_columns;
    int m_rows;
    std::vector<Cell> m_cells;
};

/// The least gap between any two neighbouring patches, in pixels.
class Gaps final {
public:
    void note(int a, int b, int gap)
    {
        const quint64 key = quint64(std::min(a, b)) << 32 | quint64(std::max(a, b));
        const auto [known, isNew] = m_gaps.try_emplace(key, gap);
        known->second = std::min(known->second, gap);
    }

    struct Neighbour {
        int patch;
        int gap;
    };

    std::vector<std::vector<Neighbour>> neighbours(int count) const
    {
        std::vector<std::vector<Neighbour>> lists(static_cast<std::size_t>(count));
        for (const auto &[key, gap] : m_gaps) {
            const auto a = std::size_t(key >> 32);
            const auto b = std::size_t(key & 0xffffffff);
            lists[a].push_back({ int(b), gap });
            lists[b].push_back({ int(a), gap });
        }
        return lists;
    }

private:
    std::unordered_map<quint64, int> m_gaps;
};

void noteMeetings(NearestPatches &nearest, int cell, Gaps &gaps)
{
    const auto meet = [&](const NearestPatches::Cell &a, const NearestPatches::Cell &b) {
        if (a.patch != b.patch && a.patch >= 0 && b.patch >= 0)
            gaps.note(a.patch, b.patch, (a.distance + b.distance + sideways) * cell / sideways);
    };
    for (int row = 0; row < nearest.rows(); ++row) {
        for (int column = 0; column < nearest.columns(); ++column) {
            if (column + 1 < nearest.columns())
                meet(nearest.at(column, row), nearest.at(column + 1, row));
            if (row + 1 < nearest.rows())
                meet(nearest.at(column, row), nearest.at(column, row + 1));
        }
    }
}

/// The rectangle around a patch: the columns from `left` to before `right`, the rows from `top` to before `bottom`.
struct Extent {
    int left = nowhere;
    int top = nowhere;
    int right = 0;
    int bottom = 0;

    /// Neither a line, nor a beam, nor a dot.
    bool isLetter(int spacing) const
    {
        const int width = right - left;
        const int height = bottom - top;
        return 5 * width >= 2 * spacing && 2 * width <= 5 * spacing && 5 * height >= 3 * spacing
            && 2 * height <= 5 * spacing;
    }
};

std::vector<Extent> extentsOf(const InkRuns &runs, const std::vector<int> &patches, int count)
{
    std::vector<Extent> extents(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < patches.size(); ++i) {
        if (patches[i] < 0)
            continue;
        const InkRun &run = runs.all()[i];
        Extent &extent = extents[std::size_t(patches[i])];
        extent.left = std::min(extent.left, run.first);
        extent.right = std::max(extent.right, run.end);
        extent.top = std::min(extent.top, run.y);
        extent.bottom = std::max(extent.bottom, run.y + 1);
    }
    return extents;
}

void noteBaselines(const std::vector<Extent> &extents, int spacing, int gap, Gaps &gaps)
{
    std::vector<std::pair<int, int>> letters;
    for (std::size_t patch = 0; patch < extents.size(); ++patch) {
        if (extents[patch].isLetter(spacing))
            letters.emplace_back(extents[patch].bottom, int(patch));
    }
    std::sort(letters.begin(), letters.end());
    for (std::size_t i = 1; i < letters.size(); ++i) {
        if (letters[i].first - letters[i - 1].first <= baselineTolerance)
            gaps.note(letters[i - 1].second, letters[i].second, gap);
    }
}

/// Counts stems whose free ends point at the staff above as half as far from it as they are.
void noteFreeStems(const InkRuns &runs, const std::vector<int> &patches, const std::vector<Extent> &extents,
    int spacing, int staff, Gaps &gaps)
{
    std::vector<bool> isStem(extents.size());
    for (std::size_t patch = 0; patch < extents.size(); ++patch)
        isStem[patch] = extents[patch].bottom - extents[patch].top >= 2 * spacing;
    for (std::size_t i = 0; i < patches.size(); ++i) {
        if (patches[i] < 0)
            continue;
        const InkRun &run = runs.all()[i];
        const auto patch = std::size_t(patches[i]);
        if (run.y < extents[patch].top + spacing && 4 * run.width() > spacing)
            isStem[patch] = false;
    }
    for (std::size_t patch = 0; patch < extents.size(); ++patch) {
        if (isStem[patch])
            gaps.note(int(patch), staff, (extents[patch].top - runs.top()) / 2);
    }
}

Gaps findGaps(const InkRuns &runs, const std::vector<int> &patches, int width, int cell, int upper, int lower)
{
    Gaps gaps;
    const int inside = (runs.bottom() - runs.top() + cell - 1) / cell;
    NearestPatches nearest((width + cell - 1) / cell, inside + 2);
    for (int column = 0; column < nearest.columns(); ++column) {
        if (upper >= 0)
            nearest.at(column, 0) = { upper, 0 };
        if (lower >= 0)
            nearest.at(column, inside + 1) = { lower, 0 };
    }
    for (std::size_t i = 0; i < patches.size(); ++i) {
        const int patch = patches[i];
        if (patch < 0)
            continue;
        const InkRun &run = runs.all()[i];
        if (upper >= 0 && run.y < runs.top() + touchingRows)
            gaps.note(patch, upper, 0);
        if (lower >= 0 && run.y >= runs.bottom() - touchingRows)
            gaps.note(patch, lower, 0);
        for (int column = run.first / cell; column <= (run.end - 1) / cell; ++column) {
            NearestPatches::Cell &place = nearest.at(column, 1 + (run.y - runs.top()) / cell);
            if (place.patch >= 0 && place.patch != patch)
                gaps.note(place.patch, patch, 0);
            else
                place = { patch, 0 };
        }
    }
    nearest.spread();
    noteMeetings(nearest, cell, gaps);
    return gaps;
}

} // namespace

namespace PDFConverter {

std::vector<InkOwner> inkOwners(const InkRuns &runs, const std::vector<int> &patches, int count, int width, int spacing,
    const StaffClaim &upper, const StaffClaim &lower)
{
    const int upperNode = count;
    const int lowerNode = count + 1;
    const int cell = std::max(1, spacing / cellsPerSpacing);
    Gaps gaps = findGaps(runs, patches, width, cell, upper.exists ? upperNode : -1, lower.exists ? lowerNode : -1);
    const std::vector<Extent> extents = extentsOf(runs, patches, count);
    noteBaselines(extents, spacing, letterGapCells * cell, gaps);
    if (upper.exists && upper.hasFreeStems)
        noteFreeStems(runs, patches, extents, spacing, upperNode, gaps);
    const auto neighbours = gaps.neighbours(count + 2);

    std::vector<InkOwner> owners(std::size_t(count) + 2, InkOwner::None);
    // The price of a link, the patch that it leads to, and whose it would be. Notation comes first among equals.
    using Link = std::tuple<int, int, int, InkOwner>;
    std::priority_queue<Link, std::vector<Link>, std::greater<>> links;
    const auto grow = [&](int patch, InkOwner owner) {
        owners[std::size_t(patch)] = owner;
        const StaffClaim &claim = owner == InkOwner::Upper ? upper : lower;
        for (const Gaps::Neighbour &next : neighbours[std::size_t(patch)]) {
            if (claim.reach < 0 || next.gap <= claim.reach)
                links.emplace(next.gap * claim.weight, claim.weight, next.patch, owner);
        }
    };
    if (upper.exists)
        grow(upperNode, InkOwner::Upper);
    if (lower.exists)
        grow(lowerNode, InkOwner::Lower);
    while (!links.empty()) {
        const auto [price, weight, patch, owner] = links.top();
        links.pop();
        if (owners[std::size_t(patch)] == InkOwner::None)
            grow(patch, owner);
    }
    owners.resize(std::size_t(count));
    return owners;
}

} // namespace PDFConverter
