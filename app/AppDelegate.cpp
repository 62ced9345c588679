#include "app/AppDelegate.h"

#include "controller/AlphaTabController.h"
#include "controller/KeyWindow.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QKeyEvent>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

bool isSpaceBar(const QKeyEvent &event)
{
    // Some layouts give a no-break space or an underscore with Shift; 65 is the bar's hardware code on X11 and Wayland.
    return event.key() == Qt::Key_Space || event.nativeScanCode() == 65;
}

/// Whether keys go to a panel for choosing files, or to a window over one. Such a panel is the platform's, even where
/// Qt draws it.
bool aFilePanelTakesKeys()
{
    for (const QWidget *widget = QApplication::activeWindow(); widget; widget = widget->parentWidget()) {
        if (qobject_cast<const QFileDialog *>(widget))
            return true;
    }
    return false;
}

/// Toggles playback on the space bar before any view sees the key, wherever the focus is in the application's windows.
class SpaceMonitor final : public QObject {
public:
    explicit SpaceMonitor(AlphaTabController &controller)
        : m_controller(controller)
    {
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto &key = *static_cast<QKeyEvent *>(event);
        constexpr Qt::KeyboardModifiers refused = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
        if (!isSpaceBar(key) || (key.modifiers() & refused) || !m_controller.playerReady || aFilePanelTakesKeys())
            return false;
        m_controller.js(BridgeCalls::playPause());
        return true;
    }

private:
    AlphaTabController &m_controller;
};

} // namespace

AppDelegate::AppDelegate(AlphaTabController &controller, QString temporaryFolder)
    : m_controller(controller)
    , m_temporaryFolder(std::move(temporaryFolder))
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    Q_ASSERT(qApp);
    if (QWidget *window = KeyWindow::find()) {
        window->raise();
        window->activateWindow();
    }
    if (QFileInfo::exists(m_temporaryFolder + u"/qv_window_shot"_s))
        startWindowShots();
    m_spaceMonitor = std::make_unique<SpaceMonitor>(m_controller);
    qApp->installEventFilter(m_spaceMonitor.get());
}

void AppDelegate::open(const QList<QUrl> &urls)
{
    if (!urls.isEmpty())
        m_controller.load(urls.constFirst());
}

void AppDelegate::startWindowShots()
{
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &AppDelegate::takeWindowShots);
    timer->start(2000ms);
}

void AppDelegate::takeWindowShots()
{
    QWidget *window = KeyWindow::find();
    if (!window)
        return;
    window->grab().save(m_temporaryFolder + u"/qv_window_shot.png"_s, "PNG");
    m_controller.snapshot([path = m_temporaryFolder + u"/qv_web_shot.png"_s](const QImage &image) {
        if (!image.isNull())
            image.save(path, "PNG");
    });
}
