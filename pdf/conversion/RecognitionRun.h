#pragma once

#include "pdf/conversion/Outcome.h"

#include <QStringList>

#include <optional>
#include <stop_token>

namespace PDFConverter {

/// Runs Audiveris, the recognition engine, over `inputs` in their order and blocks until it ends. Any thread.
///
/// Nothing is given back when it ends with status 0; its results, if any, lie under `outDir` then. Otherwise the
/// failure holds the last six lines of what it wrote. A requested stop ends it together with the processes it has
/// started; so does, for itself, the end of this thread.
/// @param bin the path of the executable
/// @param outDir made with any missing folders above it
std::optional<Failure> runAudiveris(
    const QString &bin, const QStringList &inputs, const QString &outDir, const std::stop_token &stop = {});

} // namespace PDFConverter
