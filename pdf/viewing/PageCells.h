#pragma once

#include "pdf/viewing/PDFPageCell.h"
#include "pdf/viewing/PageGridLayout.h"
#include "pdf/viewing/PageRenderQueue.h"

#include <QObject>

#include <map>
#include <memory>

class PDFDocument;

/// The cells of the pages that a view shows and of those just outside of it; all others do not exist.
///
/// That bounds the memory, however long the document is and however far it is scrolled.
class PageCells final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageCells)

public:
    /// @param onScreen how urgent the pages in view are; those outside come last anyway
    PageCells(std::shared_ptr<PageRenderQueue> queue, std::shared_ptr<const PDFDocument> document,
        PageRenderQueue::Urgency onScreen, QObject *parent);

    /// What a view needs.
    struct Wanted {
        /// Of every cell.
        double width = 0;
        PageGridLayout::Range visible;
        /// Around the visible ones: what a budget of memory allows.
        PageGridLayout::Range nearby;
        /// Pages in passing, which keep the picture they have and get no new one.
        PageGridLayout::Range passing;
    };
    /// Keeps these pages, forgets all others, and asks for the pictures that are missing.
    void keep(const Wanted &wanted);

    /// The cell of a page that is kept, and a white one of any other.
    PDFPageCell cell(int index) const;

    /// Of all pictures, in bytes.
    qsizetype memory() const;
    /// How many cells exist.
    int count() const { return int(m_cells.size()); }

Q_SIGNALS:
    /// The page looks different now.
    void changed(int index);

private:
    void take(const PageRenderQueue::Request &request, const QImage &image);

    const std::shared_ptr<PageRenderQueue> m_queue;
    const std::shared_ptr<const PDFDocument> m_document;
    const PageRenderQueue::Urgency m_onScreen;
    double m_width = 0;
    std::map<int, PDFPageCell> m_cells;
};
