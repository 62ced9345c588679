#pragma once

#include <QPointer>
#include <QWebEngineView>

/// The web view's behaviour as a widget: no drops of its own, no menu but "Inspect", the palette's window colour behind
/// whatever the page leaves open.
class EngineView final : public QWebEngineView {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EngineView)

public:
    explicit EngineView(QWidget *parent = nullptr);
    ~EngineView() override;

    /// Whether the inspector is open on the page.
    bool isInspected() const { return m_inspector && m_inspector->isVisible(); }

protected:
    void changeEvent(QEvent *event) override;
    void childEvent(QChildEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void inspect();

    /// Ends when it is closed.
    QPointer<QWebEngineView> m_inspector;
};
