#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>
#include <optional>

class AlphaTabController;
class PageRenderQueue;
class QMessageBox;
class QSplitter;
class QUrl;

/// Everything in the window: tool bar, sidebar, score area and transport bar; also takes dropped files and shows what
/// went wrong.
class ContentView final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ContentView)

public:
    explicit ContentView(AlphaTabController &controller, QWidget *parent = nullptr);
    ~ContentView() override;

    int sidebarWidth() const;
    /// Pulled into what a sidebar may have.
    void setSidebarWidth(int width);
    /// Shows the score and its controls alone, without toolbar and sidebar.
    void setStage(bool on);

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeSidebar();
    QWidget *makeDetail();
    QMessageBox *makeAlert();
    void colorViewport();
    void leadKeysTo(QWidget *reader);
    void focusReader(Qt::FocusReason reason);
    void showError(const std::optional<QString> &error);

    AlphaTabController &m_controller;
    const std::shared_ptr<PageRenderQueue> m_pages;
    QWidgetList m_aroundTheScore;
    /// Of the sidebar while it is hidden.
    std::optional<int> m_widthBefore;
    QSplitter *m_columns = nullptr;
    QWidget *m_score = nullptr;
    /// Has the focus whenever this view would have it. Not its focus proxy: Tab would go there from the last control,
    /// and never reach the first ones.
    QPointer<QWidget> m_reader;
    QPointer<QMessageBox> m_alert;
    bool m_passingKeyOn = false;
};
