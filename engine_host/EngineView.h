#pragma once

#include <QWebEngineView>

/// The web view's behaviour as a widget: no drops of its own, no menu but "Inspect".
class EngineView final : public QWebEngineView {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EngineView)

public:
    explicit EngineView(QWidget *parent = nullptr);
    ~EngineView() override;

protected:
    void childEvent(QChildEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void inspect();

    QWebEngineView *m_inspector = nullptr;
};
