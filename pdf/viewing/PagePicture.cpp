#include "pdf/viewing/PagePicture.h"

#include <algorithm>
#include <utility>

namespace {

/// A reduced picture may be stretched this far before the whole one looks better.
constexpr double mostStretching = 1.3;

} // namespace

PagePicture::PagePicture(QImage image, int shown)
    : m_image(std::move(image))
{
    if (shown < 1 || shown >= m_image.width())
        return;
    const int height = std::max(qRound(double(m_image.height()) * shown / m_image.width()), 1);
    m_reduced = m_image.scaled(shown, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

const QImage &PagePicture::forWidth(double width) const
{
    return m_reduced.isNull() || width > mostStretching * m_reduced.width() ? m_image : m_reduced;
}
