#include "design/Toggle.h"

#include "design/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>

namespace {

constexpr QSizeF switchSize(36, 20);
constexpr qreal boxSize = 16;
constexpr int gap = 8;

/// A place counted from where lines begin.
QRectF visual(const QWidget &widget, const QRectF &place)
{
    return widget.isRightToLeft() ? QRectF(QPointF(widget.width() - place.right(), place.top()), place.size()) : place;
}

} // namespace

Toggle::Toggle(Look look, const QString &text, QWidget *parent)
    : QAbstractButton(parent)
    , m_look(look)
{
    setText(text);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize Toggle::sizeHint() const
{
    const qreal mark = m_look == Look::Switch ? switchSize.width() : boxSize;
    return { fontMetrics().horizontalAdvance(text()) + gap + qCeil(mark) + 2 * outset,
        std::max(qCeil(m_look == Look::Switch ? switchSize.height() : boxSize), fontMetrics().height()) + 2 * outset
            - 2 };
}

QSize Toggle::minimumSizeHint() const { return sizeHint(); }

bool Toggle::hitButton(const QPoint &position) const { return rect().contains(position); }

void Toggle::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void Toggle::paintSwitch(QPainter &painter) const
{
    const Theme::Colors &colors = Theme::colors(palette());
    const QPointF corner(width() - outset - switchSize.width(), (height() - switchSize.height()) / 2);
    const QRectF body = visual(*this, QRectF(corner, switchSize));
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? colors.positive : colors.separator);
    painter.setOpacity(Theme::paintsEnabled(*this) ? 1 : 0.5);
    painter.drawRoundedRect(body, body.height() / 2, body.height() / 2);
    const qreal radius = body.height() / 2;
    const bool onTheRight = isChecked() != isRightToLeft();
    const QPointF knob(onTheRight ? body.right() - radius : body.left() + radius, body.center().y());
    painter.setBrush(colors.knob);
    painter.setPen(QPen(colors.knobRim, 1));
    painter.drawEllipse(knob, radius - 2, radius - 2);
    painter.setOpacity(1);
}

void Toggle::paintCheckBox(QPainter &painter) const
{
    const Theme::Colors &colors = Theme::colors(palette());
    const QRectF box = visual(*this, QRectF(outset, (height() - boxSize) / 2, boxSize, boxSize));
    painter.setPen(isChecked() ? QPen(Qt::NoPen) : QPen(colors.secondary, 1.2));
    painter.setBrush(
        isChecked() ? QBrush(Theme::paintsEnabled(*this) ? colors.accent : colors.disabled) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    if (!isChecked())
        return;
    QPainterPath tick(box.topLeft() + QPointF(4.2, 8.4));
    tick.lineTo(box.topLeft() + QPointF(7, 11.2));
    tick.lineTo(box.topLeft() + QPointF(11.9, 5.2));
    painter.setPen(QPen(colors.onAccent, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(tick);
}

void Toggle::paintEvent(QPaintEvent *)
{
    const Theme::Colors &colors = Theme::colors(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRect label = rect().adjusted(outset, 0, -outset, 0);
    if (m_look == Look::Switch) {
        paintSwitch(painter);
    } else {
        paintCheckBox(painter);
        label.adjust(int(boxSize) + gap, 0, 0, 0);
    }
    painter.setPen(Theme::paintsEnabled(*this) ? colors.text : colors.disabled);
    label = QStyle::visualRect(layoutDirection(), rect(), label);
    const Qt::Alignment side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
    painter.drawText(label, int(side | Qt::AlignAbsolute) | Qt::TextSingleLine, text());
    if (hasFocus())
        Theme::paintFocusRing(painter, rect(), Theme::radius - 2, palette());
}
