#include "pdf/conversion/Staves.h"

#include "pdf/conversion/GrayBitmap.h"

#include <algorithm>

namespace {

using namespace PDFConverter;

/// A line row is darker than this part of its width.
constexpr double lineRowPart = 0.35;
/// Line rows no further apart than this belong to one line.
constexpr int bridgedRows = 2;
constexpr int mostGapSpread = 6;
// Mean distances are held as the sum of a staff's four gaps, which keeps them exact: 20 to 90 pixels from line to line,
// and 8 pixels between the spacings of two kinds of staff.
constexpr int leastGapSum = 20 * gapsPerStaff;
constexpr int mostGapSum = 90 * gapsPerStaff;
constexpr int leastDifference = 8 * gapsPerStaff;

/// The dark pixels of one row. Counted in many narrow lanes side by side, each emptied before it can run over: the form
/// that compilers turn into vector instructions on bytes.
int darkPixels(const quint8 *row, int width)
{
    constexpr int lanes = 64;
    constexpr int mostRounds = 255;
    int dark = 0;
    int x = 0;
    while (width - x >= lanes) {
        std::array<quint8, lanes> counts{};
        const int rounds = std::min((width - x) / lanes, mostRounds);
        for (int round = 0; round < rounds; ++round, x += lanes) {
            for (int lane = 0; lane < lanes; ++lane)
                counts[std::size_t(lane)] += quint8(row[x + lane] < darkBelow);
        }
        for (const quint8 count : counts)
            dark += count;
    }
    for (; x < width; ++x)
        dark += row[x] < darkBelow;
    return dark;
}

bool isStaff(std::span<const StaffLine, linesPerStaff> lines)
{
    std::array<int, gapsPerStaff> gaps;
    for (std::size_t i = 0; i < gaps.size(); ++i)
        gaps[i] = lines[i + 1].center - lines[i].center;
    const auto [least, most] = std::minmax_element(gaps.begin(), gaps.end());
    const int sum = lines.back().center - lines.front().center;
    return *most - *least <= mostGapSpread && sum >= leastGapSum && sum <= mostGapSum;
}

} // namespace

namespace PDFConverter {

std::vector<StaffLine> findStaffLines(const GrayBitmap &bitmap)
{
    const int threshold = int(bitmap.width * lineRowPart);
    std::vector<StaffLine> lines;
    for (int y = 0; y < bitmap.height; ++y) {
        const quint8 *row = bitmap.pixels.data() + std::size_t(y) * std::size_t(bitmap.width);
        if (darkPixels(row, bitmap.width) <= threshold)
            continue;
        if (!lines.empty() && y - lines.back().bottom <= bridgedRows) {
            StaffLine &line = lines.back();
            line.bottom = y;
            line.center = (line.top + y) / 2;
        } else {
            lines.push_back({ y, y, y });
        }
    }
    return lines;
}

std::vector<Staff> findStaves(std::span<const StaffLine> lines)
{
    std::vector<Staff> staves;
    while (lines.size() >= linesPerStaff) {
        const auto five = lines.first<linesPerStaff>();
        const bool found = isStaff(five);
        if (found) {
            Staff &staff = staves.emplace_back();
            std::copy(five.begin(), five.end(), staff.lines.begin());
        }
        lines = lines.subspan(found ? linesPerStaff : 1);
    }
    return staves;
}

bool hasTablature(const GrayBitmap &bitmap)
{
    return TablatureTest::of(findStaves(findStaffLines(bitmap))).has_value();
}

std::optional<TablatureTest> TablatureTest::of(std::span<const Staff> staves)
{
    if (staves.size() < 2)
        return std::nullopt;
    const auto [narrowest, widest] = std::minmax_element(
        staves.begin(), staves.end(), [](const Staff &a, const Staff &b) { return a.span() < b.span(); });
    if (widest->span() - narrowest->span() < leastDifference)
        return std::nullopt;
    return TablatureTest(narrowest->span() + widest->span());
}

} // namespace PDFConverter
