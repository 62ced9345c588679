#include "design/Spinner.h"

#include "design/Theme.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QTimerEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr int spokes = 12;
constexpr int stepTime = 80; // milliseconds

QAccessibleInterface *makeAccessible(const QString &className, QObject *object)
{
    auto *spinner = className == "Spinner"_L1 ? qobject_cast<Spinner *>(object) : nullptr;
    return spinner ? new QAccessibleWidget(spinner, QAccessible::Animation, spinner->toolTip()) : nullptr;
}

} // namespace

Spinner::Spinner(QWidget *parent)
    : QWidget(parent)
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    setFixedSize(Theme::iconSize, Theme::iconSize);
}

void Spinner::showEvent(QShowEvent *event)
{
    m_timer.start(stepTime, this);
    QWidget::showEvent(event);
}

void Spinner::hideEvent(QHideEvent *event)
{
    m_timer.stop();
    QWidget::hideEvent(event);
}

void Spinner::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId())
        return;
    m_step = (m_step + 1) % spokes;
    update();
}

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(QRectF(rect()).center());
    painter.rotate(m_step * 360.0 / spokes);
    QColor color = Theme::colors(palette()).text;
    const qreal radius = width() / 2.0 - 1;
    // The foremost spoke is the darkest; the others follow it.
    for (int i = 0; i < spokes; ++i) {
        color.setAlphaF(0.12F + 0.7F * float(i + 1) / spokes);
        painter.setPen(QPen(color, width() / 12.0, Qt::SolidLine, Qt::RoundCap));
        painter.rotate(360.0 / spokes);
        painter.drawLine(QPointF(0, -radius * 0.52), QPointF(0, -radius));
    }
}
