#pragma once

#include "pdf/viewing/PageGridLayout.h"

#include <QAbstractScrollArea>

#include <memory>
#include <optional>

class PageCells;
class PageRenderQueue;
class PDFDocument;

/// A scrolling list of pages, each a button over the whole width: a small picture and "Page 1".
///
/// It is one stop for Tab; within it the arrow keys, Page Up, Page Down, Home and End move from row to row, and Enter
/// or the space bar presses the row. Painted like the page grid, so that a thousand pages are no thousand widgets;
/// PageListAccessible describes the rows to assistive tools.
class PageList final : public QAbstractScrollArea {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageList)

public:
    PageList(const std::shared_ptr<const PDFDocument> &document, std::shared_ptr<PageRenderQueue> queue,
        QWidget *parent = nullptr);
    ~PageList() override;

    int pageCount() const { return m_layout.pageCount(); }
    static QString nameOf(int page);
    /// In coordinates of the viewport; may lie outside of what is visible.
    QRect rowOf(int page) const;
    std::optional<int> pageAt(QPoint position) const;
    /// Where the arrow keys start from.
    int current() const { return m_current; }
    /// Does what a click on the page's row does.
    void choose(int page);
    const PageCells &cells() const { return *m_cells; }

Q_SIGNALS:
    void chosen(int page);

protected:
    bool viewportEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void keepCells();
    void paintRow(QPainter &painter, int page) const;
    void setUnderPointer(std::optional<int> page);
    void moveTo(int page);
    int rowsInView() const;
    void colorScrollBar();

    PageGridLayout m_layout;
    PageCells *const m_cells;
    int m_current = 0;
    std::optional<int> m_underPointer;
    std::optional<int> m_pressed;
};
