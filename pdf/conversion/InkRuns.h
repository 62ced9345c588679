#pragma once

#include <span>
#include <vector>

struct GrayBitmap;

namespace PDFConverter {

/// Dark pixels side by side in one row.
struct InkRun {
    int y;
    /// The columns from `first` to before `end`.
    int first;
    int end;

    int width() const { return end - first; }
};

/// The ink in some rows of a page as runs, which takes about as long as reading the pixels.
class InkRuns final {
public:
    /// The rows from `top` to before `bottom`, of these the columns before `right`.
    InkRuns(const GrayBitmap &bitmap, int top, int bottom, int right);

    int top() const { return m_top; }
    int bottom() const { return m_top + int(m_starts.size()) - 1; }
    std::span<const InkRun> all() const { return m_runs; }
    std::span<const InkRun> row(int y) const;
    /// The place of the row's first run in all().
    int startOf(int y) const { return m_starts[std::size_t(y - m_top)]; }

    /// For each run the number of the patch of touching ink that it belongs to, sideways and corners included; -1 for
    /// the runs that `leftOut` marks. The numbers begin at 0.
    std::vector<int> patches(const std::vector<bool> &leftOut, int &count) const;

private:
    int m_top;
    std::vector<InkRun> m_runs;
    /// For each row the place of its first run, and the count of all runs.
    std::vector<int> m_starts;
};

} // namespace PDFConverter
