#pragma once

class QPainter;
class QRectF;

/// The shadow of a PDF page: black at 25 %, blurred over 3 pixels, one pixel further down.
namespace PageShadow {

/// How far it reaches beyond the page, in device-independent pixels.
inline constexpr int reach = 7;

/// Paints around `page`; the area of the page itself is left out.
void paint(QPainter &painter, const QRectF &page);

} // namespace PageShadow
