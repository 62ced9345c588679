#pragma once

#include "pdf/viewing/PageGridLayout.h"

#include <QAbstractScrollArea>

#include <memory>
#include <vector>

class AlphaTabController;
class PageCells;
class PageRenderQueue;
class PDFDocument;
class QVariantAnimation;

/// The pages of a PDF as a grid that scrolls.
///
/// It is painted, not built of widgets, so that a page costs nothing until it comes near. What was at the top stays
/// there when the width or the number of pages side by side changes.
class PDFSheetView final : public QAbstractScrollArea {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PDFSheetView)

public:
    /// @param spacing between pages in both directions, in device-independent pixels
    /// @param margin around the grid
    PDFSheetView(AlphaTabController &controller, std::shared_ptr<const PDFDocument> document, double spacing,
        double margin, std::shared_ptr<PageRenderQueue> queue, QWidget *parent = nullptr);
    ~PDFSheetView() override;

    const PageGridLayout &grid() const { return m_layout; }
    const PageCells &cells() const { return *m_cells; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    /// The place in the document that is at the top of the view.
    struct Anchor {
        int page = 0;
        /// How far above the page's upper edge, in device-independent pixels.
        double gap = 0;
        /// How far below it, in heights of the page.
        double share = 0;
    };
    Anchor anchorAt(double y) const;
    double heightOf(const Anchor &anchor) const;

    void layOut();
    void turn(int direction);
    void scrollTo(int page);
    void keepCells();
    QRectF placeOf(int page) const;
    void colorScrollBar();

    AlphaTabController &m_controller;
    const std::shared_ptr<const PDFDocument> m_document;
    const double m_spacing;
    const double m_margin;
    const std::vector<double> m_aspects;
    PageGridLayout m_layout;
    PageCells *const m_cells;
    QVariantAnimation *const m_scrolling;
    Anchor m_anchor;
    /// While the view itself moves the scroll bar, not the user.
    bool m_moving = false;
    bool m_showsFocus = false;
};
