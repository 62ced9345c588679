#include "design/Popover.h"

#include "design/Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int shadowDepth = 12;
constexpr int arrowHeight = 8;
constexpr int arrowHalfWidth = 9;
constexpr int cornerRadius = 11;
/// The least distance to the window's edges.
constexpr int clearance = 4;
/// From the body's edge to this widget's: the arrow needs room above or below, the shadow everywhere.
constexpr int inset = shadowDepth + arrowHeight;

} // namespace

Popover *Popover::open(QWidget *content, QWidget &anchor)
{
    // A button takes the focus from the keyboard alone.
    const bool byKeyboard = anchor.hasFocus();
    auto *popover = new Popover(content, anchor);
    popover->place();
    popover->show();
    popover->raise();
    // Who came by keyboard finds the focus on the first control; who came by mouse sees no ring yet.
    popover->setFocus(Qt::PopupFocusReason);
    if (byKeyboard)
        popover->focusNextPrevChild(true);
    return popover;
}

Popover::Popover(QWidget *content, QWidget &anchor)
    : QWidget(anchor.window())
    , m_anchor(&anchor)
{
    setFocusPolicy(Qt::ClickFocus);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(inset, inset, inset, inset);
    layout->addWidget(content);
    qApp->installEventFilter(this);
}

Popover::~Popover() = default;

void Popover::dismiss()
{
    if (m_closing)
        return;
    m_closing = true;
    qApp->removeEventFilter(this);
    const bool hadFocus = holds(QApplication::focusWidget());
    hide();
    if (hadFocus && m_anchor)
        m_anchor->setFocus(Qt::PopupFocusReason);
    Q_EMIT closed();
    deleteLater();
}

void Popover::place()
{
    if (!m_anchor)
        return;
    const QRect room = parentWidget()->rect();
    const QRect anchor(m_anchor->mapTo(parentWidget(), QPoint()), m_anchor->size());
    const QSize size = sizeHint();
    // The arrow's tip touches the control; the shadow may go beyond it.
    const int reach = size.height() - shadowDepth;
    m_above = anchor.top() - reach + shadowDepth >= room.top() || anchor.top() >= room.bottom() - anchor.bottom();
    const int y
        = m_above ? std::max(anchor.top() - reach, room.top() - shadowDepth) : anchor.bottom() + 1 - shadowDepth;
    const int left = room.left() + clearance - inset;
    const int right = std::max(left, room.right() + 1 - clearance + inset - size.width());
    const int x = std::clamp(anchor.center().x() - size.width() / 2, left, right);
    const int corner = inset + cornerRadius + arrowHalfWidth;
    m_arrowX = std::clamp(anchor.center().x() - x, corner, std::max(corner, size.width() - corner));
    setGeometry(QRect(QPoint(x, y), size));
    update();
}

bool Popover::holds(const QWidget *widget) const
{
    // Across windows: the list of a picker is a window of its own that belongs to the picker.
    while (widget && widget != this)
        widget = widget->parentWidget();
    return widget == this;
}

bool Popover::eventFilter(QObject *watched, QEvent *event)
{
    const auto *widget = qobject_cast<QWidget *>(watched);
    if (!widget)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        // The control itself opens and closes; it must not find the panel closed already.
        if (!holds(widget) && !(m_anchor && (widget == m_anchor || m_anchor->isAncestorOf(widget))))
            dismiss();
        return false;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape || widget->window() != window())
            return false;
        // A menu may have the key, too: it is asked for first, and then comes as a press.
        if (event->type() == QEvent::ShortcutOverride)
            event->accept();
        else
            dismiss();
        return true;
    case QEvent::Resize:
        if (widget == parentWidget())
            QMetaObject::invokeMethod(this, &Popover::place, Qt::QueuedConnection);
        return false;
    case QEvent::Hide:
        if (m_anchor && widget == m_anchor && !m_anchor->isVisible())
            dismiss();
        return false;
    default:
        return false;
    }
}

bool Popover::focusNextPrevChild(bool next)
{
    QWidgetList stops;
    for (QWidget *child : findChildren<QWidget *>()) {
        if ((child->focusPolicy() & Qt::TabFocus) && child->isEnabled() && child->isVisibleTo(this)
            && child->window() == window())
            stops << child;
    }
    if (stops.isEmpty())
        return true;
    const qsizetype current = stops.indexOf(QApplication::focusWidget());
    const qsizetype step = next ? 1 : -1;
    const qsizetype target
        = current < 0 ? (next ? 0 : stops.size() - 1) : (current + step + stops.size()) % stops.size();
    stops[target]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void Popover::mousePressEvent(QMouseEvent *event)
{
    // Left alone, a press between the controls would go on to the window and count as one outside.
    event->accept();
}

void Popover::paintEvent(QPaintEvent *)
{
    const Theme::Colors &colors = Theme::colors(palette());
    const QRectF body = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    QPainterPath panel;
    panel.addRoundedRect(body, cornerRadius, cornerRadius);
    const qreal base = m_above ? body.bottom() : body.top();
    const qreal tip = base + (m_above ? arrowHeight : -arrowHeight);
    QPainterPath arrow(QPointF(m_arrowX - arrowHalfWidth, base));
    arrow.lineTo(m_arrowX, tip);
    arrow.lineTo(m_arrowX + arrowHalfWidth, base);
    arrow.closeSubpath();
    panel = panel.united(arrow);

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    for (int width = 2 * shadowDepth; width > 0; width -= 2) {
        painter.setPen(QPen(colors.shadow, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(panel.translated(0, 2));
    }
    painter.setPen(QPen(colors.separator, 1));
    painter.setBrush(colors.popover);
    painter.drawPath(panel);
}
