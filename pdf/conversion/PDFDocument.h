#pragma once

#include "pdf/conversion/PageBoxes.h"

#include <QString>

#include <memory>
#include <vector>

class QImage;
class QPdfDocument;
class QSize;

/// One open PDF file.
///
/// The library that draws takes one thread of the program at a time and keeps the others waiting. So what a window asks
/// for while it lays itself out - page count and boxes - is read when the document is opened and needs no library
/// after.
class PDFDocument final {
    Q_DISABLE_COPY_MOVE(PDFDocument)

public:
    ~PDFDocument();

    /// Opens the file at `path`; null when it is missing, no regular file, not a PDF, needs a password or has no page.
    /// The file stays open. Whoever lets go of the document last does not wait for it to be closed.
    static std::shared_ptr<PDFDocument> open(const QString &path);

    /// At least 1.
    int pageCount() const { return int(m_boxes.size()); }

    /// Where the page lies on its paper; null when there is no page of that index.
    const PageBox *box(int index) const;

    /// The page as it is displayed - its crop box, turned - stretched over `size` and laid on white. Null when there is
    /// no such page, or no memory for it. Any thread; waits while another one draws, some milliseconds to a second.
    QImage picture(int index, QSize size) const;

private:
    PDFDocument(std::unique_ptr<QPdfDocument> document, std::vector<PageBox> boxes);

    const std::unique_ptr<QPdfDocument> m_document;
    const std::vector<PageBox> m_boxes;
};
