#include "design/Button.h"

#include "design/Icons.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

namespace {

constexpr int iconTextGap = 7;

int sidePadding(Button::Look look, bool hasText)
{
    switch (look) {
    case Button::Look::Plain:
        return hasText ? 5 : 3;
    case Button::Look::Tool:
        return hasText ? 9 : 6;
    case Button::Look::Standard:
    case Button::Look::Prominent:
        return hasText ? 16 : 8;
    }
    Q_UNREACHABLE();
}

} // namespace

Button::Button(Look look, QWidget *parent)
    : QAbstractButton(parent)
    , m_look(look)
{
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Button::setIconName(const QString &identifier)
{
    if (identifier == m_iconName)
        return;
    m_iconName = identifier;
    update();
}

void Button::setTint(Theme::Role tint)
{
    if (tint == m_tint)
        return;
    m_tint = tint;
    update();
}

QRect Button::body() const { return QStyle::visualRect(layoutDirection(), rect(), rect().marginsRemoved(m_reach)); }

void Button::setReach(const QMargins &reach)
{
    m_reach = reach;
    updateGeometry();
    update();
}

QSize Button::sizeHint() const
{
    int width = 2 * sidePadding(m_look, !text().isEmpty());
    if (!m_iconName.isEmpty())
        width += Theme::iconSize;
    if (!text().isEmpty())
        width += fontMetrics().horizontalAdvance(text()) + (m_iconName.isEmpty() ? 0 : iconTextGap);
    const int height = m_look == Look::Plain ? std::max(Theme::iconSize, fontMetrics().height()) + 4
                                             : std::max(Theme::controlHeight, fontMetrics().height() + 10);
    return QSize(width, height).grownBy(m_reach);
}

QSize Button::minimumSizeHint() const { return sizeHint(); }

// Not WA_Hover: it would hold for children of a disabled parent as well.
void Button::enterEvent(QEnterEvent *event)
{
    update();
    QAbstractButton::enterEvent(event);
}

void Button::leaveEvent(QEvent *event)
{
    update();
    QAbstractButton::leaveEvent(event);
}

void Button::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

// In a list the icon tells on from off. A letter stays the same, and two dark tints of it are easily taken for each
// other.
bool Button::showsChecked() const { return isChecked() && (m_look != Look::Plain || !text().isEmpty()); }

QColor Button::contentColor() const
{
    const Theme::Colors &colors = Theme::colors(palette());
    if (!isEnabled())
        return colors.disabled;
    if (m_look == Look::Prominent)
        return colors.onAccent;
    return showsChecked() && m_look != Look::Plain ? colors.accent : colors.*m_tint;
}

void Button::paintBody(QPainter &painter) const
{
    const Theme::Colors &colors = Theme::colors(palette());
    painter.setPen(Qt::NoPen);
    const auto fill = [&painter, this](const QColor &color) {
        painter.setBrush(color);
        painter.drawRoundedRect(body(), Theme::radius, Theme::radius);
    };
    if (m_look == Look::Standard || m_look == Look::Prominent)
        fill(m_look == Look::Prominent && isEnabled() ? colors.accent : colors.fill);
    if (showsChecked()) {
        QColor tinted = contentColor();
        tinted.setAlphaF(0.16F);
        fill(tinted);
    }
    if (isEnabled() && (isDown() || underMouse()))
        fill(isDown() ? colors.pressed : colors.hover);
}

void Button::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBody(painter);
    const QColor color = contentColor();
    QRect content = body();
    if (!m_iconName.isEmpty() && !text().isEmpty()) {
        content.adjust(sidePadding(m_look, true), 0, -sidePadding(m_look, true), 0);
        const auto visual
            = [this, content](const QRect &place) { return QStyle::visualRect(layoutDirection(), content, place); };
        const QRect icon(content.left(), content.top(), Theme::iconSize, content.height());
        Icons::paint(painter, m_iconName, visual(icon), Theme::iconSize, color);
        content = visual(content.adjusted(Theme::iconSize + iconTextGap, 0, 0, 0));
    } else if (!m_iconName.isEmpty()) {
        Icons::paint(painter, m_iconName, content, Theme::iconSize, color);
    }
    if (!text().isEmpty()) {
        painter.setPen(color);
        painter.setLayoutDirection(text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        painter.drawText(content, Qt::AlignCenter | Qt::TextSingleLine, text());
    }
    if (hasFocus())
        Theme::paintFocusRing(painter, body(), Theme::radius - 1, palette());
}
