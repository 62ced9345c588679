#include "pdf/conversion/PageRaster.h"

#include "pdf/conversion/SheetPages.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImage>
#include <QPdfDocument>
#include <QPdfDocumentRenderOptions>

#include <algorithm>
#include <cmath>
#include <new>

namespace {

constexpr double pixelsPerUnit = 600.0 / 72.0;
constexpr qint64 mostBytes = qint64(1) << 30;

/// The drawing library draws in colour, four bytes a pixel, and reads the page anew for each band. Bands of this size
/// keep the whole below two rasters of the page; smaller ones cost time, larger ones gain none.
constexpr qint64 bandBytes = 12 << 20;
/// The same for small pages.
constexpr int leastBands = 6;

PDFConverter::Failure cannotRasterize()
{
    return { QCoreApplication::translate("PDFConverter", "Could not rasterize a PDF page.") };
}

/// A size in PDF units as displayed.
QSizeF turned(const QSizeF &size, int rotation) { return rotation % 180 == 0 ? size : size.transposed(); }

/// How far the media box lies from the left and the upper edge of its paper as displayed, in PDF units.
QPointF cornerOnPaper(const SheetPage &page)
{
    const QRectF media = page.media;
    const QRectF paper(page.paper);
    // These rectangles have y upwards: their top() is the lower edge.
    const double left = media.left() - paper.left();
    const double right = paper.right() - media.right();
    const double lower = media.top() - paper.top();
    const double upper = paper.bottom() - media.bottom();
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

/// Draws rows `y`...`y + rows - 1` of the picture whose upper left corner lies at `corner` of the paper. False when the
/// drawing library gives no picture.
bool drawBand(QPdfDocument &document, const QSize &paper, const QPoint &corner, int y, int rows, GrayBitmap &bitmap)
{
    QPdfDocumentRenderOptions options;
    options.setScaledSize(paper);
    // The library takes the distance from the first to the last pixel for the width: one more on either side makes its
    // scale exact.
    options.setScaledClipRect(QRect(corner.x(), corner.y() + y, bitmap.width + 1, rows + 1));
    const QImage band = document.render(0, QSize(bitmap.width, rows), options);
    if (band.format() != QImage::Format_ARGB32)
        return false;
    for (int row = 0; row < rows; ++row) {
        layOnWhite(reinterpret_cast<const QRgb *>(band.constScanLine(row)),
            bitmap.pixels.data() + std::size_t(y + row) * std::size_t(bitmap.width), bitmap.width);
    }
    return true;
}

int bandHeight(const GrayBitmap &bitmap)
{
    const qint64 fitting = bandBytes / (qint64(sizeof(QRgb)) * bitmap.width);
    return int(std::clamp<qint64>(std::min<qint64>(fitting, bitmap.height / leastBands), 1, bitmap.height));
}

bool draw(const SheetPage &page, GrayBitmap &bitmap, const std::stop_token &stop)
{
    QBuffer file;
    file.setData(page.file);
    file.open(QIODevice::ReadOnly);
    QPdfDocument document(nullptr);
    document.load(&file);
    if (document.pageCount() < 1)
        return false;

    const QSize paper = (turned(QSizeF(page.paper.size()), page.rotation) * pixelsPerUnit).toSize();
    const QPoint corner = (cornerOnPaper(page) * pixelsPerUnit).toPoint();
    const int step = bandHeight(bitmap);
    for (int y = 0; y < bitmap.height; y += step) {
        if (stop.stop_requested() || !drawBand(document, paper, corner, y, std::min(step, bitmap.height - y), bitmap))
            return false;
    }
    return true;
}

} // namespace

namespace PDFConverter {

Outcome<GrayBitmap> render(const SheetPage &page, const std::stop_token &stop, std::vector<quint8> storage)
{
    const QSizeF size = turned(page.media.size(), page.rotation) * pixelsPerUnit;
    const double width = std::round(size.width());
    const double height = std::round(size.height());
    if (width < 1 || height < 1)
        return Failure{ QCoreApplication::translate("PDFConverter", "Empty PDF page.") };
    if (width * height > double(mostBytes))
        return cannotRasterize();
    try {
        GrayBitmap bitmap{ std::move(storage), int(width), int(height) };
        bitmap.pixels.assign(std::size_t(width) * std::size_t(height), 255);
        if (!draw(page, bitmap, stop))
            return cannotRasterize();
        return bitmap;
    } catch (const std::bad_alloc &) {
        return cannotRasterize();
    }
}

} // namespace PDFConverter
