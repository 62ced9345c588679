#include "pdf/conversion/InkRuns.h"

#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/Staves.h"

#include <cstring>
#include <numeric>

namespace {

using namespace PDFConverter;

/// The first column from `x` on whose pixel is dark. Paper is passed over eight pixels at a time: with 128 as the limit
/// a light pixel is one whose highest bit is set.
int nextDark(const quint8 *row, int x, int right)
{
    static_assert(darkBelow == 128);
    constexpr quint64 highestBits = 0x8080808080808080;
    quint64 eight = 0;
    for (; right - x >= int(sizeof eight); x += int(sizeof eight)) {
        std::memcpy(&eight, row + x, sizeof eight);
        if ((eight & highestBits) != highestBits)
            break;
    }
    while (x < right && row[x] >= darkBelow)
        ++x;
    return x;
}

int rootOf(std::vector<int> &parents, int run)
{
    while (parents[std::size_t(run)] != run) {
        int &parent = parents[std::size_t(run)];
        parent = parents[std::size_t(parent)];
        run = parent;
    }
    return run;
}

void join(std::vector<int> &parents, int a, int b)
{
    a = rootOf(parents, a);
    b = rootOf(parents, b);
    parents[std::size_t(std::max(a, b))] = std::min(a, b);
}

} // namespace

namespace PDFConverter {

InkRuns::InkRuns(const GrayBitmap &bitmap, int top, int bottom, int right)
    : m_top(top)
{
    for (int y = top; y < bottom; ++y) {
        m_starts.push_back(int(m_runs.size()));
        const quint8 *row = bitmap.pixels.data() + std::size_t(y) * std::size_t(bitmap.width);
        for (int x = nextDark(row, 0, right); x < right; x = nextDark(row, x, right)) {
            const int first = x;
            while (x < right && row[x] < darkBelow)
                ++x;
            m_runs.push_back({ y, first, x });
        }
    }
    m_starts.push_back(int(m_runs.size()));
}

std::span<const InkRun> InkRuns::row(int y) const
{
    const auto first = std::size_t(m_starts[std::size_t(y - m_top)]);
    const auto end = std::size_t(m_starts[std::size_t(y - m_top) + 1]);
    return std::span(m_runs).subspan(first, end - first);
}

std::vector<int> InkRuns::patches(const std::vector<bool> &leftOut, int &count) const
{
    std::vector<int> parents(m_runs.size());
    std::iota(parents.begin(), parents.end(), 0);
    for (int y = m_top + 1; y < bottom(); ++y) {
        // Both rows are in the order of their columns: one walk over the two finds all that touch.
        int upper = startOf(y - 1);
        int lower = startOf(y);
        const int upperEnd = startOf(y);
        const int lowerEnd = startOf(y) + int(row(y).size());
        while (upper < upperEnd && lower < lowerEnd) {
            const InkRun &a = m_runs[std::size_t(upper)];
            const InkRun &b = m_runs[std::size_t(lower)];
            const bool touching = a.first <= b.end && b.first <= a.end;
            if (touching && !leftOut[std::size_t(upper)] && !leftOut[std::size_t(lower)])
                join(parents, upper, lower);
            a.end < b.end ? ++upper : ++lower;
        }
    }
    std::vector<int> numbers(m_runs.size(), -1);
    count = 0;
    for (std::size_t run = 0; run < m_runs.size(); ++run) {
        // A root is the least of its patch, so that it has its number before the others ask for it.
        const int root = rootOf(parents, int(run));
        if (!leftOut[run])
            numbers[run] = root == int(run) ? count++ : numbers[std::size_t(root)];
    }
    return numbers;
}

} // namespace PDFConverter
