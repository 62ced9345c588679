#pragma once

#include "design/Surface.h"

#include <memory>

class AlphaTabController;
class PageRenderQueue;
class PDFDocument;

/// The list of a PDF's pages, with a small picture each; a click on one scrolls the page grid there.
class PDFPageSidebar final : public Surface {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PDFPageSidebar)

public:
    PDFPageSidebar(AlphaTabController &controller, const std::shared_ptr<const PDFDocument> &document,
        std::shared_ptr<PageRenderQueue> queue, QWidget *parent = nullptr);
};
