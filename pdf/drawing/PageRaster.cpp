#include "pdf/drawing/PageRaster.h"

#include "pdf/drawing/PageExtractor.h"

#include <QBuffer>
#include <QImage>
#include <QPdfDocument>
#include <QPdfDocumentRenderOptions>

#include <algorithm>
#include <cmath>

namespace {

constexpr double pixelsPerUnit = 600.0 / 72.0;
/// The drawing library draws in colour, four bytes a pixel, and reads the page anew for each band. Bands of this size
/// keep the whole below two rasters of the page; smaller ones cost time, larger ones gain none.
constexpr qint64 bandBytes = 14 << 20;
/// Where the page shows pictures, which the library decodes anew for each band: all of an A4 page and what is a little
/// larger in one go.
constexpr qint64 bandBytesWithPictures = 160 << 20;
/// The same for small pages.
constexpr int leastBands = 6;

/// A size in PDF units as displayed.
QSizeF turned(const QSizeF &size, int rotation) { return rotation % 180 == 0 ? size : size.transposed(); }

/// How far the media box lies from the left and the upper edge of the drawn box as displayed, in PDF units.
QPointF cornerInDrawnBox(const ExtractedPage &page)
{
    const QRectF media = page.media;
    const QRectF drawn(page.drawnBox);
    // These rectangles have y upwards: their top() is the lower edge.
    const double left = media.left() - drawn.left();
    const double right = drawn.right() - media.right();
    const double lower = media.top() - drawn.top();
    const double upper = drawn.bottom() - media.bottom();
    switch (page.rotation) {
    case 90:
        return { lower, left };
    case 180:
        return { right, lower };
    case 270:
        return { upper, right };
    default:
        return { left, upper };
    }
}

/// One pixel of unpremultiplied colour on white. Sixteen bits hold every step, which suits vector instructions.
quint8 onWhite(QRgb pixel)
{
    const auto alpha = quint16(pixel >> 24);
    const auto red = quint16((pixel >> 16) & 255);
    const auto green = quint16((pixel >> 8) & 255);
    const auto blue = quint16(pixel & 255);
    // The weights of ITU-R BT.601 in 256ths.
    const auto luma = quint16(quint16(77 * red + 150 * green + 29 * blue) >> 8);
    const auto sum = quint16(luma * alpha + 255 * (255 - alpha) + 128);
    return quint8(quint16(sum + (sum >> 8)) >> 8); // divided by 255, rounded
}

/// Lays `count` pixels of unpremultiplied colour on white, in plain loops over short runs, which compilers turn into
/// vector instructions.
void layOnWhite(const QRgb *colours, quint8 *grays, int count)
{
    constexpr int run = 64;
    for (int start = 0; start < count; start += run) {
        const int length = std::min(run, count - start);
        const QRgb *in = colours + start;
        quint8 *out = grays + start;
        QRgb colour = 0;
        for (int i = 0; i < length; ++i)
            colour |= in[i];
        if ((colour & 0x00ffffff) == 0) {
            // Black ink or none, as nearly everywhere in a score.
            for (int i = 0; i < length; ++i)
                out[i] = quint8(255 - (in[i] >> 24));
        } else {
            for (int i = 0; i < length; ++i)
                out[i] = onWhite(in[i]);
        }
    }
}

/// Draws rows `y`...`y + rows - 1` of the picture whose upper left corner lies at `corner` of the drawn box. False when
/// the drawing library gives no picture.
bool drawBand(
    QPdfDocument &document, const QSize &drawnSize, const QPoint &corner, int y, int rows, const PageRaster &raster)
{
    QPdfDocumentRenderOptions options;
    options.setScaledSize(drawnSize);
    // The library takes the distance from the first to the last pixel for the width: one more on either side makes its
    // scale exact.
    options.setScaledClipRect(QRect(corner.x(), corner.y() + y, raster.width + 1, rows + 1));
    const QImage band = document.render(0, QSize(raster.width, rows), options);
    if (band.format() != QImage::Format_ARGB32)
        return false;
    for (int row = 0; row < rows; ++row) {
        layOnWhite(reinterpret_cast<const QRgb *>(band.constScanLine(row)),
            raster.pixels + std::size_t(y + row) * std::size_t(raster.width), raster.width);
    }
    return true;
}

int bandHeight(const PageRaster &raster, bool hasPictures)
{
    const qint64 fitting = (hasPictures ? bandBytesWithPictures : bandBytes) / (qint64(sizeof(QRgb)) * raster.width);
    const qint64 most = hasPictures ? raster.height : raster.height / leastBands;
    return int(std::clamp<qint64>(std::min<qint64>(fitting, most), 1, raster.height));
}

} // namespace

bool render(const ExtractedPage &page, const PageRaster &raster)
{
    QBuffer file;
    file.setData(page.file);
    file.open(QIODevice::ReadOnly);
    QPdfDocument document(nullptr);
    document.load(&file);
    if (document.pageCount() < 1)
        return false;

    const QSize drawnSize = (turned(QSizeF(page.drawnBox.size()), page.rotation) * pixelsPerUnit).toSize();
    const QPoint corner = (cornerInDrawnBox(page) * pixelsPerUnit).toPoint();
    const int step = bandHeight(raster, page.hasPictures);
    for (int y = 0; y < raster.height; y += step) {
        if (!drawBand(document, drawnSize, corner, y, std::min(step, raster.height - y), raster))
            return false;
    }
    return true;
}
