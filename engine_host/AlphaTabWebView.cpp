#include "engine_host/AlphaTabWebView.h"

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
