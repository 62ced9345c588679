#pragma once

#include <QImage>
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

    /// Width over height of the page as displayed; that of upright paper where the file does not say.
    double aspect() const { return aspect(*m_document, m_index); }
    static double aspect(const PDFDocument &document, int index);

    /// Names a picture: the page, and its width in steps of 24. A picture is good for all widths of one name.
    QString renderKey() const;
    /// The picture's size in pixels: twice the width, for sharp display on dense screens, less only where that would
    /// take more memory than any screen is worth. None for a cell too small to show anything.
    std::optional<QSize> imageSize() const;

    /// The last picture that arrived; stays, stretched, until the next one does.
    const QImage &image() const { return m_image; }
    /// Whether a picture of the present name is still to come.
    bool needsImage() const;
    void setImage(const QString &renderKey, const QImage &image);

    /// Paints picture or white paper into `place`, with a shadow around it. Sharp where `place` lies on whole pixels.
    void paint(QPainter &painter, const QRectF &place) const;

private:
    std::shared_ptr<const PDFDocument> m_document;
    int m_index;
    double m_width;
    QImage m_image;
    /// What the last picture, or the failed attempt at one, was made for.
    QString m_imageKey;
};
