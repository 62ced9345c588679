#include "pdf/viewing/PDFPageCell.h"

#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PageShadow.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr double uprightPaper = 1 / 1.414;
constexpr double keyStep = 24;
/// Cells up to this width stay white.
constexpr double tooSmall = 20;
/// 256 MiB of picture; a page at full width on a screen of 3840 pixels just fits.
constexpr double greatestArea = 64.0 * 1024 * 1024;
/// What the painter can stretch.
constexpr double greatestSide = 30000;

} // namespace

PDFPageCell::PDFPageCell(std::shared_ptr<const PDFDocument> document, int index, double width)
    : m_document(std::move(document))
    , m_index(index)
    , m_width(width)
{
}

double PDFPageCell::aspect(const PDFDocument &document, int index)
{
    const PageBox *box = document.box(index);
    if (!box || box->crop.width() <= 0 || box->crop.height() <= 0)
        return uprightPaper;
    const double aspect = box->crop.width() / box->crop.height();
    return box->rotation % 180 == 0 ? aspect : 1 / aspect;
}

QString PDFPageCell::renderKey() const
{
    return QString::number(m_index) + u'-' + QString::number(int(m_width / keyStep));
}

std::optional<QSize> PDFPageCell::imageSize() const
{
    if (m_width <= tooSmall)
        return std::nullopt;
    const double width = 2 * m_width;
    const double height = width / aspect();
    const double scale
        = std::min({ 1.0, std::sqrt(greatestArea / (width * height)), greatestSide / std::max(width, height) });
    return QSize(std::max(qRound(scale * width), 1), std::max(qRound(scale * height), 1));
}

bool PDFPageCell::needsImage() const { return m_width > tooSmall && m_imageKey != renderKey(); }

void PDFPageCell::setImage(const QString &renderKey, const QImage &image)
{
    m_imageKey = renderKey;
    if (!image.isNull())
        m_image = image;
}

void PDFPageCell::paint(QPainter &painter, const QRectF &place) const
{
    PageShadow::paint(painter, place);
    if (m_image.isNull()) {
        painter.fillRect(place, Qt::white);
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, m_image);
    painter.restore();
}
