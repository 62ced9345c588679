#pragma once

#include <QtGlobal>

#include <vector>

/// One page as a picture of 8-bit gray.
struct GrayBitmap {
    /// Row after row from the top, `width` bytes each and nothing between them; 0 is black, 255 is white.
    std::vector<quint8> pixels;
    /// Both at least 1; `pixels` holds exactly `width` times `height` bytes.
    int width = 0;
    int height = 0;
};
