#pragma once

#include <QString>

#include <functional>

namespace PDFConverter {

/// How far a conversion is.
struct Progress {
    /// From 1; 0 while Audiveris reads.
    int page = 0;
    /// How many there are.
    int pages = 0;
    /// What Audiveris calls the step that it is in, in capitals; empty before its first.
    QString step;
};

/// Called in the thread of the conversion.
using ProgressReport = std::function<void(const Progress &)>;

} // namespace PDFConverter
