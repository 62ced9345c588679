#include "design/Style.h"

#include "design/Theme.h"

#include <QBitmap>
#include <QFrame>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace {

void paintPushButton(const QStyleOption &option, QPainter &painter)
{
    const Theme::Colors &colors = Theme::colors(option.palette);
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(&option);
    const bool isDefault = button && (button->features & QStyleOptionButton::DefaultButton);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isDefault && (option.state & QStyle::State_Enabled) ? colors.accent : colors.fill);
    painter.drawRoundedRect(option.rect, Theme::radius, Theme::radius);
    if (option.state & (QStyle::State_Sunken | QStyle::State_MouseOver)) {
        painter.setBrush(option.state & QStyle::State_Sunken ? colors.pressed : colors.hover);
        painter.drawRoundedRect(option.rect, Theme::radius, Theme::radius);
    }
    painter.restore();
}

/// A thin rounded bar without arrows that grows darker under the pointer.
void paintScrollBar(const QStyleOptionSlider &option, QPainter &painter, const QRect &handle)
{
    const Theme::Colors &colors = Theme::colors(option.palette);
    constexpr qreal inset = 3;
    QColor color = colors.secondary;
    color.setAlphaF(option.state & (QStyle::State_MouseOver | QStyle::State_Sunken) ? 0.6F : 0.35F);
    const QRectF bar = QRectF(handle).adjusted(inset, inset, -inset, -inset);
    const qreal corner = std::min(bar.width(), bar.height()) / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(bar, corner, corner);
    painter.restore();
}

void paintMenuBarItem(const QStyleOptionMenuItem &item, QPainter &painter)
{
    const Theme::Colors &colors = Theme::colors(item.palette);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(item.rect, colors.bar);
    if (item.state & (QStyle::State_Selected | QStyle::State_Sunken)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(item.state & QStyle::State_Sunken ? colors.pressed : colors.hover);
        painter.drawRoundedRect(item.rect.adjusted(1, 1, -1, -1), Theme::radius - 2, Theme::radius - 2);
    }
    painter.setPen(item.state & QStyle::State_Enabled ? colors.text : colors.disabled);
    painter.drawText(item.rect, Qt::AlignCenter | Qt::TextHideMnemonic | Qt::TextSingleLine, item.text);
    painter.restore();
}

/// A text that keeps the order of its own letters and signs where lines run from the right: "Open…", "Ctrl++", "[".
QString inItsOwnOrder(const QString &text)
{
    constexpr QChar embedding(0x202a);
    constexpr QChar end(0x202c);
    return text.isEmpty() || text.isRightToLeft() ? text : embedding + text + end;
}

/// Of a menu's item: its title, and its keys behind a tabulator.
QString itemInItsOwnOrder(const QString &text)
{
    QStringList parts = text.split(u'\t');
    for (QString &part : parts)
        part = inItsOwnOrder(part);
    return parts.join(u'\t');
}

/// The edge of a frame inside of a window.
void paintFrame(const QStyleOption &option, QPainter &painter)
{
    painter.save();
    painter.setPen(Theme::colors(option.palette).separator);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter.restore();
}

/// The edge of a box for a tick, over that of Fusion, which on dark grey is darker still.
void paintBoxEdge(const QStyleOption &option, QPainter &painter, bool round)
{
    const Theme::Colors &colors = Theme::colors(option.palette);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(option.state & QStyle::State_Enabled ? colors.secondary : colors.disabled);
    painter.setBrush(Qt::NoBrush);
    const QRectF edge = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (round)
        painter.drawEllipse(edge);
    else
        painter.drawRect(edge);
    painter.restore();
}

/// The corners of a small window of its own: a menu, a picker's list, a tooltip.
constexpr qreal popupRadius = Theme::radius - 1;

QPainterPath popupOutline(const QRect &rect)
{
    QPainterPath outline;
    outline.addRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), popupRadius, popupRadius);
    return outline;
}

/// The edge of such a window. A desktop without a compositor draws no shadow around it.
void paintPopupFrame(const QStyleOption &option, QPainter &painter)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Theme::colors(option.palette).edge, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(popupOutline(option.rect));
    painter.restore();
}

/// The pixels of such a window: a mask, because without a compositor nothing can be half transparent.
QRegion popupMask(const QRect &rect)
{
    QBitmap mask(rect.size());
    mask.clear();
    QPainter painter(&mask);
    painter.setPen(Qt::color1);
    painter.setBrush(Qt::color1);
    painter.drawPath(popupOutline(mask.rect()));
    painter.end();
    return QRegion(mask).translated(rect.topLeft());
}

} // namespace

Style::Style()
    : QProxyStyle(u"fusion"_s)
{
}

Style::~Style() = default;

void Style::polish(QPalette &palette)
{
    const Theme::Colors &colors = Theme::colors(palette);
    palette.setColor(QPalette::Window, colors.bar);
    palette.setColor(QPalette::Base, colors.popover);
    palette.setColor(QPalette::AlternateBase, colors.sidebar);
    palette.setColor(QPalette::ToolTipBase, colors.popover);
    palette.setColor(QPalette::Button, colors.bar);
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, colors.onAccent);
    palette.setColor(QPalette::Link, colors.accent);
    palette.setColor(QPalette::PlaceholderText, colors.secondary);
    for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText }) {
        palette.setColor(role, colors.text);
        palette.setColor(QPalette::Disabled, role, colors.disabled);
    }
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, colors.unavailable);
}

int Style::styleHint(
    StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returnData) const
{
    switch (hint) {
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_ScrollBar_Transient:
        return 0;
    case SH_ComboBox_PopupFrameStyle:
        return QFrame::StyledPanel | QFrame::Plain;
    case SH_ScrollBar_LeftClickAbsolutePosition:
        return 1;
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
    case SH_Menu_Mask:
    case SH_ToolTip_Mask:
        if (auto *mask = qstyleoption_cast<QStyleHintReturnMask *>(returnData); mask && option) {
            mask->region = popupMask(option->rect);
            return 1;
        }
        return 0;
    case SH_ToolTip_WakeUpDelay:
        return 600;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return 12;
    case PM_SplitterWidth:
    case PM_MenuPanelWidth: // no menu paints its edge without one
        return 1;
    case PM_MenuVMargin:
        return 4;
    case PM_MenuBarVMargin:
        return 2;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

void Style::drawPrimitive(
    PrimitiveElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        paintPushButton(*option, *painter);
        break;
    case PE_Frame:
        // A picker's list is a window of its own; its frame is the edge of that.
        if (widget && widget->isWindow())
            paintPopupFrame(*option, *painter);
        else
            paintFrame(*option, *painter);
        break;
    case PE_FrameMenu:
        paintPopupFrame(*option, *painter);
        break;
    case PE_PanelTipLabel:
    case PE_PanelMenu:
        painter->fillRect(option->rect, Theme::colors(option->palette).popover);
        // A menu lets its frame paint along the sides alone, which leaves the corners out.
        paintPopupFrame(*option, *painter);
        break;
    case PE_IndicatorCheckBox:
    case PE_IndicatorRadioButton:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        paintBoxEdge(*option, *painter, element == PE_IndicatorRadioButton);
        break;
    case PE_FrameFocusRect:
        Theme::paintFocusRing(*painter, option->rect, Theme::radius - 2, option->palette);
        break;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void Style::drawControl(
    ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    const Theme::Colors &colors = Theme::colors(option->palette);
    switch (element) {
    case CE_Splitter:
        painter->fillRect(option->rect, colors.separator);
        break;
    case CE_MenuBarItem:
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option))
            paintMenuBarItem(*item, *painter);
        break;
    case CE_MenuItem:
        drawMenuItem(*option, *painter, widget);
        break;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, colors.bar);
        break;
    case CE_PushButtonLabel: {
        const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
        QStyleOptionButton copy = button ? *button : QStyleOptionButton();
        if ((copy.features & QStyleOptionButton::DefaultButton) && (copy.state & State_Enabled))
            copy.palette.setColor(QPalette::ButtonText, colors.onAccent);
        QProxyStyle::drawControl(element, &copy, painter, widget);
        break;
    }
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void Style::drawMenuItem(const QStyleOption &option, QPainter &painter, const QWidget *widget) const
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(&option);
    QStyleOptionMenuItem copy = item ? *item : QStyleOptionMenuItem();
    if (copy.state & State_Selected) {
        const Theme::Colors &colors = Theme::colors(option.palette);
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.accent);
        painter.drawRoundedRect(option.rect.adjusted(3, 1, -3, -1), Theme::radius - 2, Theme::radius - 2);
        painter.restore();
        copy.state &= ~State_Selected;
        for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
            copy.palette.setColor(role, colors.onAccent);
    }
    if (copy.direction == Qt::RightToLeft)
        copy.text = itemInItsOwnOrder(copy.text);
    QProxyStyle::drawControl(CE_MenuItem, &copy, &painter, widget);
}

void Style::drawComplexControl(
    ComplexControl control, const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control == CC_ScrollBar && slider)
        paintScrollBar(*slider, *painter, subControlRect(control, option, SC_ScrollBarSlider, widget));
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QSize Style::sizeFromContents(
    ContentsType type, const QStyleOption *option, const QSize &size, const QWidget *widget) const
{
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_MenuItem && result.height() > 12) // separators are lower
        result.rheight() += 4;
    if (type == CT_PushButton) {
        constexpr int besideText = 8; // beyond the margin that Fusion leaves
        result = (result + QSize(2 * besideText, 0)).expandedTo(QSize(84, Theme::controlHeight));
    }
    return result;
}
