#include "engine_host/EngineView.h"

#include <QChildEvent>
#include <QContextMenuEvent>
#include <QMenu>
#include <QWebEnginePage>
#include <QWebEngineProfile>

EngineView::EngineView(QWidget *parent)
    : QWebEngineView(parent)
{
    setAcceptDrops(false);
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
    // Chromium's own surface lies over this view and would take the drops.
    if (event->type() == QEvent::ChildPolished) {
        if (auto *surface = qobject_cast<QWidget *>(event->child()))
            surface->setAcceptDrops(false);
    }
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
    if (!m_inspector) {
        // A window and a profile of its own: the page's interceptor would block the inspector's resources.
        m_inspector = new QWebEngineView;
        auto *profile = new QWebEngineProfile(m_inspector);
        m_inspector->setPage(new QWebEnginePage(profile, m_inspector));
        m_inspector->setWindowTitle(tr("Inspector"));
        m_inspector->resize(1000, 600);
        m_inspector->setAttribute(Qt::WA_QuitOnClose, false);
        page()->setDevToolsPage(m_inspector->page());
    }
    m_inspector->show();
    m_inspector->raise();
    page()->triggerAction(QWebEnginePage::InspectElement);
}
