#include "pdf/viewing/PageShadow.h"

#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace Qt::StringLiterals;

namespace {

constexpr double strength = 0.25;
constexpr double blur = 3;
constexpr double drop = 1;
/// Where the blurred edge has run out, to either side of the sharp one.
constexpr int fade = 2 * int(blur);

/// How much of a blurred half-plane is left at a distance from its edge, inwards: the integral of a Gaussian whose
/// standard deviation is half the blur radius.
double blurredEdge(double inwards) { return 0.5 * (1 + std::erf(inwards / (blur / 2) / std::numbers::sqrt2)); }

/// The shadow of a small page that shows each corner and edge once; the middle is one pixel wide.
QPixmap stencil(qreal scale)
{
    const int side = 2 * int(std::ceil(2 * fade * scale)) + 1;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    const auto profile = [side, scale](int pixel) {
        const double fromEdge = std::min(pixel + 0.5, side - pixel - 0.5) / scale - fade;
        return blurredEdge(fromEdge);
    };
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            image.setPixel(x, y, qRgba(0, 0, 0, qRound(255 * strength * profile(x) * profile(y))));
    }
    return QPixmap::fromImage(image);
}

QPixmap stencilFor(qreal scale)
{
    const QString key = u"page shadow %1"_s.arg(scale);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = stencil(scale);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

} // namespace

void PageShadow::paint(QPainter &painter, const QRectF &page)
{
    const qreal scale = painter.device()->devicePixelRatioF();
    const QPixmap pixmap = stencilFor(scale);
    const int corner = pixmap.width() / 2; // of the stencil, in its own pixels
    const QRectF outer = page.translated(0, drop).adjusted(-fade, -fade, fade, fade);
    // A small page has no room for whole corners.
    const double shown = std::min({ double(corner) / scale, outer.width() / 2, outer.height() / 2 });
    const double xs[]{ outer.left(), outer.left() + shown, outer.right() - shown, outer.right() };
    const double ys[]{ outer.top(), outer.top() + shown, outer.bottom() - shown, outer.bottom() };
    const double cut = shown * scale;
    const double from[]{ 0, double(corner), pixmap.width() - cut };
    const double sizes[]{ cut, 1, cut };
    painter.save();
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const QRectF target(QPointF(xs[column], ys[row]), QPointF(xs[column + 1], ys[row + 1]));
            const QRectF source(from[column], from[row], sizes[column], sizes[row]);
            if ((row != 1 || column != 1) && !target.isEmpty())
                painter.drawPixmap(target, pixmap, source);
        }
    }
    painter.restore();
}
