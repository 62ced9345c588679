#include "app/PrintingAfterClose.h"

#include "controller/AlphaTabController.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "engine_host/process/SystemLog.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMainWindow>

using namespace Qt::StringLiterals;

PrintingAfterClose::PrintingAfterClose(AlphaTabController &controller, QMainWindow &window, int timeoutMs)
    : m_controller(controller)
    , m_window(window)
{
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(timeoutMs);
    connect(&m_timeout, &QTimer::timeout, this, &PrintingAfterClose::giveUp);
    m_controller.printing.onChange(this, [this](bool printing) {
        if (!printing)
            end();
    });
    m_window.installEventFilter(this);
}

PrintingAfterClose::~PrintingAfterClose() = default;

bool PrintingAfterClose::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Close)
        begin();
    else if (event->type() == QEvent::Show)
        m_timeout.stop();
    return QObject::eventFilter(watched, event);
}

void PrintingAfterClose::begin()
{
    if (!m_controller.printing)
        return;
    m_running.emplace();
    m_timeout.start();
    if (m_controller.isPlaying)
        m_controller.js(BridgeCalls::playPause());
}

void PrintingAfterClose::end()
{
    if (m_controller.conversionError.value() && !m_window.isVisible())
        m_window.show();
    m_timeout.stop();
    m_running.reset();
}

void PrintingAfterClose::giveUp()
{
    SystemLog::write(u"[Quaverly] the score was not printed in time after the window was closed"_s);
    QCoreApplication::quit();
}
