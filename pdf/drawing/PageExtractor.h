#pragma once

#include "pdf/drawing/PageBoxes.h"

#include <QByteArray>
#include <QRect>

#include <memory>
#include <optional>
#include <vector>

class QPDF;

/// One page of a PDF, taken out of its file for drawing.
struct ExtractedPage {
    /// A PDF of this page alone, without crop box, annotations or encryption. Its media box is `drawnBox`.
    QByteArray file;
    /// The page's own media box, in PDF units (1/72 inch), before rotation.
    QRectF media;
    /// The media box drawn up to whole units and to multiples of three of them, which are whole pixels at 600 dpi: the
    /// drawing library rounds the size of a page to whole units and would change its scale otherwise.
    QRect drawnBox;
    /// Clockwise turn for display: 0, 90, 180 or 270.
    int rotation = 0;
    /// Whether it shows a picture, which the drawing library decodes anew each time it draws a part of the page.
    bool hasPictures = false;
};

/// The pages of a PDF one by one, so that memory holds what one of them needs, however long the document is.
///
/// libqpdf opens what its user password, if it is the empty one, protects, and repairs what can be.
class PageExtractor final {
    Q_DISABLE_COPY_MOVE(PageExtractor)

public:
    ~PageExtractor();

    /// Null when `file`, a whole file's bytes, cannot be read as a PDF, or needs a password.
    /// @param file stays where it is for as long as the pages live
    static std::unique_ptr<PageExtractor> open(const QByteArray &file);

    const std::vector<PageBox> &boxes() const { return m_boxes; }

    /// @param index from 0; nothing for a page that is too damaged to be taken out
    std::optional<ExtractedPage> page(int index);

private:
    PageExtractor(std::unique_ptr<QPDF> document, std::vector<PageBox> boxes);

    const std::unique_ptr<QPDF> m_document;
    const std::vector<PageBox> m_boxes;
};
