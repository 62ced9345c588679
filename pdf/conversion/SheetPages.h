#pragma once

#include "pdf/conversion/PageBoxes.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class QPDF;

/// One page of a PDF, taken out of its file for drawing.
struct SheetPage {
    /// A PDF of this page alone, without crop box, annotations or encryption. Its media box is `paper`.
    QByteArray file;
    /// The page's own media box, in PDF units (1/72 inch), before rotation.
    QRectF media;
    /// The media box drawn up to whole units and to multiples of three of them, which are whole pixels at 600 dpi: the
    /// drawing library rounds the size of a page to whole units and would change its scale otherwise.
    QRect paper;
    /// Clockwise turn for display: 0, 90, 180 or 270.
    int rotation = 0;
};

/// The pages of a PDF one by one, so that memory holds what one of them needs, however long the document is.
///
/// libqpdf opens what its user password, if it is the empty one, protects, and repairs what can be.
class SheetPages final {
    Q_DISABLE_COPY_MOVE(SheetPages)

public:
    ~SheetPages();

    /// Null when the file at `path` is missing, cannot be read as a PDF, or needs a password.
    static std::unique_ptr<SheetPages> open(const QString &path);

    int count() const { return int(m_boxes.size()); }

    /// @param index from 0; nothing for a page that is too damaged to be taken out
    std::optional<SheetPage> page(int index);

private:
    SheetPages(std::unique_ptr<QPDF> document, std::vector<PageBox> boxes);

    const std::unique_ptr<QPDF> m_document;
    const std::vector<PageBox> m_boxes;
};
