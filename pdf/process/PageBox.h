#pragma once

#include <QRectF>

/// Where one page lies on its media box. Boxes are in PDF units (1/72 inch), y upwards, before rotation.
struct PageBox {
    QRectF media;
    /// What a viewer shows: the part of the crop box within the media box, which may be nothing; the media box where
    /// there is no crop box, or one without area.
    QRectF crop;
    /// Clockwise turn for display: 0, 90, 180 or 270.
    int rotation = 0;
};
