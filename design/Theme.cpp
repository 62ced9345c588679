#include "design/Theme.h"

#include "design/Style.h"

#include <QApplication>
#include <QGraphicsEffect>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QWidget>

namespace {

const Theme::Colors &light()
{
    static const Theme::Colors colors{
        .canvas = QColor(0xff, 0xff, 0xff),
        .viewport = QColor(0xe8, 0xe8, 0xec),
        .bar = QColor(0xf8, 0xf8, 0xfa),
        .sidebar = QColor(0xf2, 0xf2, 0xf5),
        .popover = QColor(0xff, 0xff, 0xff),
        .separator = QColor(0xdf, 0xdf, 0xe5),
        .edge = QColor(0xbb, 0xbb, 0xc6),
        .text = QColor(0x1d, 0x1d, 0x24),
        .secondary = QColor(0x65, 0x65, 0x72),
        .disabled = QColor(0xb4, 0xb4, 0xbe),
        .unavailable = QColor(0x7d, 0x7d, 0x89),
        .fill = QColor(0xe6, 0xe6, 0xec),
        .hover = QColor(0, 0, 0, 14),
        .pressed = QColor(0, 0, 0, 30),
        .accent = QColor(0x4c, 0x58, 0xd2),
        .onAccent = QColor(0xff, 0xff, 0xff),
        .positive = QColor(0x2a, 0x9d, 0x57),
        .muted = QColor(0xc4, 0x26, 0x2e),
        .knob = QColor(0xff, 0xff, 0xff),
        .knobRim = QColor(0, 0, 0, 56),
        .shadow = QColor(0, 0, 0, 3),
    };
    return colors;
}

const Theme::Colors &dark()
{
    static const Theme::Colors colors{
        .canvas = QColor(0x1b, 0x1b, 0x1f),
        .viewport = QColor(0x16, 0x16, 0x19),
        .bar = QColor(0x25, 0x25, 0x2a),
        .sidebar = QColor(0x21, 0x21, 0x26),
        .popover = QColor(0x2d, 0x2d, 0x33),
        .separator = QColor(0x3a, 0x3a, 0x42),
        .edge = QColor(0x5c, 0x5c, 0x68),
        .text = QColor(0xee, 0xee, 0xf2),
        .secondary = QColor(0xae, 0xae, 0xba),
        .disabled = QColor(0x62, 0x62, 0x6d),
        .unavailable = QColor(0x96, 0x96, 0xa2),
        .fill = QColor(0x3d, 0x3d, 0x46),
        .hover = QColor(255, 255, 255, 18),
        .pressed = QColor(255, 255, 255, 36),
        .accent = QColor(0x8e, 0x98, 0xff),
        .onAccent = QColor(0x14, 0x16, 0x2e),
        .positive = QColor(0x35, 0xb3, 0x68),
        .muted = QColor(0xff, 0x6b, 0x6b),
        .knob = QColor(0xe8, 0xe8, 0xee),
        .knobRim = QColor(0, 0, 0, 110),
        .shadow = QColor(0, 0, 0, 10),
    };
    return colors;
}

} // namespace

bool Theme::isDark(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Window).lightness()
        < palette.color(QPalette::Active, QPalette::WindowText).lightness();
}

const Theme::Colors &Theme::colors(const QPalette &palette) { return isDark(palette) ? dark() : light(); }

QPalette Theme::darkPalette()
{
    QPalette palette(dark().bar, dark().canvas);
    palette.setColor(QPalette::WindowText, dark().text);
    install();
    QApplication::style()->polish(palette);
    return palette;
}

QFont Theme::font(Type type)
{
    QFont font = QApplication::font();
    const auto scaled = [&font](qreal factor) {
        // A font set in pixels has no point size.
        if (font.pointSizeF() > 0)
            font.setPointSizeF(font.pointSizeF() * factor);
        else
            font.setPixelSize(qRound(font.pixelSize() * factor));
    };
    switch (type) {
    case Type::Caption:
        scaled(0.9);
        break;
    case Type::Callout:
        scaled(0.96);
        break;
    case Type::Body:
        break;
    case Type::Headline:
        font.setWeight(QFont::DemiBold);
        break;
    case Type::Title:
        scaled(1.5);
        break;
    }
    return font;
}

void Theme::install()
{
    if (!qobject_cast<Style *>(QApplication::style()))
        QApplication::setStyle(new Style);
}

bool Theme::paintsEnabled(const QWidget &widget)
{
    if (widget.isEnabled())
        return true;
    for (const QWidget *part = &widget; part && !part->isEnabled(); part = part->parentWidget()) {
        if (part->graphicsEffect() && part->graphicsEffect()->isEnabled())
            return true;
    }
    return false;
}

void Theme::paintFocusRing(QPainter &painter, const QRectF &rect, qreal cornerRadius, const QPalette &palette)
{
    QColor ring = colors(palette).accent;
    ring.setAlphaF(0.75F);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ring, 2));
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
    painter.restore();
}
