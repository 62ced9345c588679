#pragma once

#include <QImage>

/// A page as drawn, and once more as large as the screen shows it.
///
/// Pictures have more pixels than most screens need. A painter that leaves out pixels on the way down leaves out thin
/// lines, every second staff line among them, so such a screen gets a picture that was made smaller by averaging, ahead
/// of time and off the main thread.
class PagePicture final {
public:
    PagePicture() = default;
    /// @param shown width on the screen, in its pixels
    PagePicture(QImage image, int shown);

    bool isNull() const { return m_image.isNull(); }
    const QImage &image() const { return m_image; }
    /// The one to paint `width` device pixels wide.
    const QImage &forWidth(double width) const;
    qsizetype sizeInBytes() const { return m_image.sizeInBytes() + m_reduced.sizeInBytes(); }

private:
    QImage m_image;
    /// Null where the screen can use the whole.
    QImage m_reduced;
};
