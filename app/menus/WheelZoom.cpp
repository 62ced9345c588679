#include "app/menus/WheelZoom.h"

#include "controller/AlphaTabController.h"

#include <QApplication>
#include <QWheelEvent>
#include <QWidget>

WheelZoom::WheelZoom(AlphaTabController &controller, QWidget &window)
    : QObject(&window)
    , m_controller(controller)
    , m_window(window)
{
    // Chromium would take the event before any widget around it sees it.
    qApp->installEventFilter(this);
}

WheelZoom::~WheelZoom() = default;

bool WheelZoom::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel)
        return false;
    const auto *widget = qobject_cast<const QWidget *>(watched);
    auto *wheel = static_cast<QWheelEvent *>(event);
    if (!widget || widget->window() != &m_window || wheel->modifiers() != Qt::ControlModifier
        || m_controller.pdfDocument.value())
        return false;
    m_turned += wheel->angleDelta().y();
    const int steps = m_turned / QWheelEvent::DefaultDeltasPerStep;
    m_turned -= steps * QWheelEvent::DefaultDeltasPerStep;
    if (steps != 0)
        m_controller.stepZoom(steps);
    wheel->accept();
    return true;
}
