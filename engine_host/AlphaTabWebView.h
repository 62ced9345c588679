#pragma once

#include <QPointer>
#include <QWidget>

/// The place of the score in the window: shows the web view that somebody else owns.
///
/// Making it again shows the same view again, page and all; going away, it hands the view back unharmed.
class AlphaTabWebView final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AlphaTabWebView)

public:
    /// @param webView the view to show; may be null where the program runs without Chromium
    explicit AlphaTabWebView(QWidget *webView, QWidget *parent = nullptr);
    ~AlphaTabWebView() override;

    QWidget *webView() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QPointer<QWidget> m_webView;
};
