#pragma once

#include <QtGlobal>

struct ExtractedPage;

/// Where a page's raster goes: one byte a pixel, row after row from the top without gaps; 0 is black, 255 is white.
struct PageRaster {
    quint8 *pixels = nullptr;
    /// Both at least 1.
    int width = 0;
    int height = 0;
};

/// Draws the whole media box of `page`, as it is displayed, on white at 600 dots per inch: one PDF unit is 25/3 pixels.
///
/// False when the drawing library gives no picture.
bool render(const ExtractedPage &page, const PageRaster &raster);
