#pragma once

#include <array>
#include <optional>
#include <span>
#include <vector>

struct GrayBitmap;

/// Staves on a page of 600 dots per inch, found by the darkness of its pixel rows. All positions are row indices.
namespace PDFConverter {

/// A pixel below this counts as ink.
inline constexpr int darkBelow = 128;

/// One ruled line: `top` is its first row, `bottom` its last.
struct StaffLine {
    int center;
    int top;
    int bottom;
};

inline constexpr int linesPerStaff = 5;
inline constexpr int gapsPerStaff = linesPerStaff - 1;

/// Five lines at one distance. A tablature staff of six lines is found by its upper five.
struct Staff {
    std::array<StaffLine, linesPerStaff> lines;

    int top() const { return lines.front().top; }
    int bottom() const { return lines.back().bottom; }
    /// From the first line's centre to the fifth's: four times the spacing.
    int span() const { return lines.back().center - lines.front().center; }
    /// In pixels, rounded down.
    int spacing() const { return span() / gapsPerStaff; }
};

/// From the top of the page to its bottom.
std::vector<StaffLine> findStaffLines(const GrayBitmap &bitmap);

/// From the top of the page to its bottom; staves share no lines.
std::vector<Staff> findStaves(std::span<const StaffLine> lines);

/// Which of the staves are tablature: those of the wider line spacing, where the staves fall into two groups by it.
class TablatureTest final {
public:
    /// Nothing when the page has one kind of staff only.
    static std::optional<TablatureTest> of(std::span<const Staff> staves);

    bool operator()(const Staff &staff) const { return 2 * staff.span() > m_twiceMiddle; }

private:
    explicit TablatureTest(int twiceMiddle)
        : m_twiceMiddle(twiceMiddle)
    {
    }

    int m_twiceMiddle;
};

/// Whether the page has staves of both kinds.
bool hasTablature(const GrayBitmap &bitmap);

} // namespace PDFConverter
