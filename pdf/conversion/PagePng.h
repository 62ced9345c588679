#pragma once

#include "pdf/conversion/Result.h"

#include <optional>

struct GrayBitmap;

namespace PDFConverter {

/// Writes `bitmap` to `path` as a PNG of 8-bit gray. Nothing when it is written; "Could not encode a page image." when
/// the bitmap is none or the file cannot be made, "Could not write a page image." when it cannot be filled.
std::optional<Failure> writePNG(const GrayBitmap &bitmap, const QString &path);

} // namespace PDFConverter
