#pragma once

#include <vector>

namespace PDFConverter {

class InkRuns;

/// A bar line, bracket or brace that runs from one staff to the next.
struct JoiningStroke {
    /// The columns from `first` to before `end` that it covers in one row.
    struct Columns {
        int first;
        int end;
    };
    Columns atTop;
    Columns atBottom;
    /// The places of its runs in InkRuns::all(). Where something crosses it, there is none.
    std::vector<int> runs;
};

/// The strokes that cross all the rows of `runs`, the rows between two staves. They may lean and bend a little.
/// @param mostWidth the greatest width of a stroke, in pixels
std::vector<JoiningStroke> joiningStrokes(const InkRuns &runs, int mostWidth);

} // namespace PDFConverter
