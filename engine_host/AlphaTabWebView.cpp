#include "engine_host/AlphaTabWebView.h"

#include <QKeyEvent>
#include <QVBoxLayout>

AlphaTabWebView::AlphaTabWebView(QWidget *webView, QWidget *parent)
    : QWidget(parent)
    , m_webView(webView)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    if (webView)
        layout->addWidget(webView);
}

AlphaTabWebView::~AlphaTabWebView()
{
    if (m_webView && m_webView->parentWidget() == this)
        m_webView->setParent(nullptr);
}

QWidget *AlphaTabWebView::webView() const { return m_webView; }

/// Chromium gives back what the page has left, some time later. Everybody has been offered that key: it ends here, or
/// whoever passes keys on to the page would pass it on again, for ever.
void AlphaTabWebView::keyPressEvent(QKeyEvent *event) { event->accept(); }
