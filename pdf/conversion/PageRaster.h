#pragma once

#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/Outcome.h"

#include <stop_token>

struct SheetPage;

namespace PDFConverter {

/// Draws the whole media box of `page`, as it is displayed, on white at 600 dots per inch: one PDF unit is 25/3 pixels.
///
/// Fails with "Empty PDF page." when a side rounds to no pixel, and with "Could not rasterize a PDF page." when the
/// drawing library gives no picture, the picture would take more than 1 GiB, or `stop` was requested. Any thread.
/// @param storage the pixels of a bitmap that is done with: to use its memory again spares the time to get it anew
Outcome<GrayBitmap> render(const SheetPage &page, const std::stop_token &stop = {}, std::vector<quint8> storage = {});

} // namespace PDFConverter
