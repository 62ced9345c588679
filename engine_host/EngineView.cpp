#include "engine_host/EngineView.h"

#include "engine_host/PageAccessible.h"

#include <QChildEvent>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QMenu>
#include <QWebEnginePage>
#include <QWebEngineProfile>

namespace {

class Inspector final : public QWebEngineView {
public:
    explicit Inspector(QWebEnginePage &inspected)
    {
        // A profile of its own: the page's interceptor would block the inspector's resources.
        auto *profile = new QWebEngineProfile;
        auto *tools = new QWebEnginePage(profile, this);
        // A page has to go before its profile does.
        profile->setParent(tools);
        setPage(tools);
        inspected.setDevToolsPage(tools);
        setWindowTitle(EngineView::tr("Inspector"));
        resize(1000, 600);
        setAttribute(Qt::WA_QuitOnClose, false);
        setAttribute(Qt::WA_DeleteOnClose);
    }

protected:
    void closeEvent(QCloseEvent *event) override
    {
        // A page that stands at a breakpoint goes on.
        page()->setInspectedPage(nullptr);
        QWebEngineView::closeEvent(event);
    }
};

} // namespace

EngineView::EngineView(QWidget *parent)
    : QWebEngineView(parent)
{
    setAcceptDrops(false);
    if (!PageAccessible::isLeftToChromium())
        PageAccessible::install();
}

EngineView::~EngineView() { delete m_inspector; }

void EngineView::changeEvent(QEvent *event)
{
    QWebEngineView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        page()->setBackgroundColor(palette().color(QPalette::Window));
}

void EngineView::childEvent(QChildEvent *event)
{
    QWebEngineView::childEvent(event);
    auto *surface = qobject_cast<QWidget *>(event->child());
    if (!surface || surface->isWindow())
        return;
    // Chromium's own surface lies over this view and would take the drops.
    if (event->type() == QEvent::ChildPolished)
        surface->setAcceptDrops(false);
    else if (event->type() == QEvent::ChildAdded && !PageAccessible::isLeftToChromium())
        PageAccessible::describe(*surface);
}

void EngineView::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Inspect"), this, &EngineView::inspect);
    menu->popup(event->globalPos());
}

void EngineView::inspect()
{
    if (!isInspected())
        m_inspector = new Inspector(*page());
    m_inspector->show();
    m_inspector->raise();
    page()->triggerAction(QWebEnginePage::InspectElement);
}
