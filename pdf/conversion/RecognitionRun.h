#pragma once

#include "pdf/conversion/ConversionProgress.h"
#include "pdf/conversion/Result.h"

#include <QStringList>

#include <optional>
#include <stop_token>

namespace PDFConverter {

/// Runs Audiveris over `inputs` in their order and blocks until it, and every process of its
/// own that still writes, has ended. Any thread.
///
/// Nothing is given back when it ends with status 0; its results, if any, lie under `outDir` then. Otherwise the
/// failure holds the last six lines of what it wrote, or what a long line begins with, and what the user can do about
/// it where that is known. A requested stop ends it together with the processes it has started; so does the end of this
/// program, in whatever way.
/// @param bin the path of the executable
/// @param outDir made with any missing folders above it
/// @param report called at each step that Audiveris begins
std::optional<Failure> runAudiveris(const QString &bin, const QStringList &inputs, const QString &outDir,
    const std::stop_token &stop = {}, const ProgressReport &report = {});

} // namespace PDFConverter
