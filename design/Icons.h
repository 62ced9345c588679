#pragma once

#include <QString>

class QColor;
class QPainter;
class QPixmap;
class QRectF;

/// The window's icons by identifier ("play.fill", "metronome", ...), painted in any colour.
namespace Icons {

/// @param size edge length in device-independent pixels
/// @param scale device pixels per device-independent pixel
QPixmap pixmap(const QString &identifier, int size, const QColor &color, qreal scale);

/// Paints centred in `rect`, at `size` by `size`.
void paint(QPainter &painter, const QString &identifier, const QRectF &rect, int size, const QColor &color);

} // namespace Icons
