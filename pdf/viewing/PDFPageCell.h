#pragma once

#include "pdf/viewing/PagePicture.h"

#include <QString>

#include <memory>
#include <optional>

class PDFDocument;
class QPainter;
class QRectF;

/// One page laid out at some width, and its picture as soon as there is one.
class PDFPageCell final {
public:
    PDFPageCell(std::shared_ptr<const PDFDocument> document, int index, double width);

    int index() const { return m_index; }
    /// Device-independent pixels.
    double width() const { return m_width; }
    void setWidth(double width) { m_width = width; }

    /// Width over height of the page as displayed, from a thousandth to a thousand; that of an upright A4 page where
    /// the file does not say.
    double aspect() const { return aspect(*m_document, m_index); }
    static double aspect(const PDFDocument &document, int index);

    /// Names a picture: the page, and its width in steps of 24. A picture is good for all widths of one name.
    QString renderKey() const;
    /// The picture's size in pixels: twice the width, for sharp display on dense screens, less only where that would
    /// take more memory than any screen is worth. None for a cell too small to show anything.
    std::optional<QSize> imageSize() const;

    /// The last picture that arrived; stays, stretched, until the next one does.
    const PagePicture &picture() const { return m_picture; }
    const QImage &image() const { return m_picture.image(); }
    /// Whether there is none because the page cannot be drawn.
    bool isUndrawable() const { return m_undrawable && m_picture.isNull(); }
    /// Whether a picture of the present name is still to come.
    bool needsImage() const;
    void setPicture(const QString &renderKey, const PagePicture &picture);

    /// Paints the picture, white paper or, on that, that the page cannot be drawn into `place`, with a shadow around
    /// it. Sharp where `place` lies on whole pixels.
    void paint(QPainter &painter, const QRectF &place, bool dark = false) const;

private:
    std::shared_ptr<const PDFDocument> m_document;
    int m_index;
    double m_width;
    PagePicture m_picture;
    /// What the last picture, or the failed attempt at one, was made for.
    QString m_pictureKey;
    bool m_undrawable = false;
};
