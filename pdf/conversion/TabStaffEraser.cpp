#include "pdf/conversion/TabStaffEraser.h"

#include "pdf/conversion/GrayBitmap.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace {

constexpr quint8 darkBelow = 128;
/// A line row is darker than this part of its width.
constexpr double lineRowPart = 0.35;
/// Line rows no further apart than this belong to one line.
constexpr int bridgedRows = 2;
constexpr int linesPerStaff = 5;
constexpr int gapsPerStaff = linesPerStaff - 1;
constexpr int mostGapSpread = 6;
// Mean distances are held as the sum of a staff's four gaps, which keeps them exact: 20 to 90 pixels from line to line,
// and 8 pixels between the spacings of two kinds of staff.
constexpr int leastGapSum = 20 * gapsPerStaff;
constexpr int mostGapSum = 90 * gapsPerStaff;
constexpr int leastDifference = 8 * gapsPerStaff;

struct Line {
    int center;
    int top;
    int bottom;
};

struct Staff {
    int top;
    int bottom;
    /// From the first line's centre to the fifth's: four times the spacing.
    int span;
};

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

std::vector<int> darknessProfile(const GrayBitmap &bitmap)
{
    std::vector<int> profile;
    profile.reserve(std::size_t(bitmap.height));
    for (int y = 0; y < bitmap.height; ++y)
        profile.push_back(darkPixels(bitmap.pixels.data() + std::size_t(y) * std::size_t(bitmap.width), bitmap.width));
    return profile;
}

std::vector<Line> findLines(const std::vector<int> &profile, int threshold)
{
    std::vector<Line> lines;
    for (int y = 0; y < int(profile.size()); ++y) {
        if (profile[std::size_t(y)] <= threshold)
            continue;
        if (!lines.empty() && y - lines.back().bottom <= bridgedRows) {
            Line &line = lines.back();
            line.bottom = y;
            line.center = (line.top + y) / 2;
        } else {
            lines.push_back({ y, y, y });
        }
    }
    return lines;
}

bool isStaff(std::span<const Line, linesPerStaff> lines)
{
    std::array<int, gapsPerStaff> gaps;
    for (std::size_t i = 0; i < gaps.size(); ++i)
        gaps[i] = lines[i + 1].center - lines[i].center;
    const auto [least, most] = std::minmax_element(gaps.begin(), gaps.end());
    const int sum = lines.back().center - lines.front().center;
    return *most - *least <= mostGapSpread && sum >= leastGapSum && sum <= mostGapSum;
}

/// A tablature staff of six lines is found by its upper five.
std::vector<Staff> findStaves(std::span<const Line> lines)
{
    std::vector<Staff> staves;
    while (lines.size() >= linesPerStaff) {
        const auto five = lines.first<linesPerStaff>();
        const bool found = isStaff(five);
        if (found)
            staves.push_back({ five.front().top, five.back().bottom, five.back().center - five.front().center });
        lines = lines.subspan(found ? linesPerStaff : 1);
    }
    return staves;
}

/// The margin is wider below, where the sixth line, fret digits and rhythm marks are.
void erase(const Staff &staff, GrayBitmap &bitmap)
{
    const int spacing = staff.span / gapsPerStaff;
    const int from = std::max(0, staff.top - 2 * spacing);
    const int to = std::min(bitmap.height, staff.bottom + 3 * spacing);
    const auto row = [&bitmap](int y) { return bitmap.pixels.begin() + std::ptrdiff_t(y) * bitmap.width; };
    std::fill(row(from), row(to), quint8(255));
}

} // namespace

namespace PDFConverter {

bool eraseTabStaves(GrayBitmap &bitmap)
{
    const int threshold = int(bitmap.width * lineRowPart);
    const std::vector<Line> lines = findLines(darknessProfile(bitmap), threshold);
    const std::vector<Staff> staves = findStaves(lines);
    if (staves.size() < 2)
        return false;
    const auto [narrowest, widest] = std::minmax_element(
        staves.begin(), staves.end(), [](const Staff &a, const Staff &b) { return a.span < b.span; });
    if (widest->span - narrowest->span < leastDifference)
        return false;
    const int twiceMiddle = narrowest->span + widest->span;
    for (const Staff &staff : staves) {
        if (2 * staff.span > twiceMiddle)
            erase(staff, bitmap);
    }
    return true;
}

} // namespace PDFConverter
