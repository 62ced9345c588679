#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QPdfDocument>
#include <QSize>

/// Draws the pages of one PDF as they are displayed.
class PagePainter final {
    Q_DISABLE_COPY_MOVE(PagePainter)

public:
    /// @param file stays where it is for as long as this object lives
    explicit PagePainter(const QByteArray &file);

    /// 0 when the file cannot be read.
    int pageCount() const { return m_document.pageCount(); }
    /// In PDF units, as displayed.
    QSizeF size(int page) const { return m_document.pagePointSize(page); }

    /// Draws the page stretched over `size` on white: four bytes a pixel, rows without gaps. False when the library
    /// gives no picture.
    bool draw(int page, QSize size, QRgb *pixels);

private:
    QBuffer m_file;
    QPdfDocument m_document;
};
