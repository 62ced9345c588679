#include "pdf/viewing/PDFPageCell.h"

#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PageShadow.h"

#include <QCoreApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr double uprightPaper = 1 / 1.414;
/// A strip that is longer yet is shown as if it were so long: the place of what comes behind it has to be a number.
constexpr double mostAspect = 1000;
constexpr double keyStep = 24;
/// Cells up to this width stay white.
constexpr double tooSmall = 20;
/// 256 MiB of picture; a page at full width on a screen of 3840 pixels just fits.
constexpr double greatestArea = 64.0 * 1024 * 1024;
/// What the painter can stretch.
constexpr double greatestSide = 30000;

/// Paper is white, whatever the window's colours are.
const QColor onPaper(128, 128, 128);
/// As dark as the score page is then (page.css).
const QColor darkPaper(0x1f, 0x20, 0x24);
constexpr int leastWidthOfText = 120;

/// A cross on small pages, words on larger ones.
void paintUndrawable(QPainter &painter, const QRectF &place)
{
    painter.save();
    painter.setPen(onPaper);
    if (place.width() >= leastWidthOfText) {
        painter.drawText(place.adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap,
            QCoreApplication::translate("PDFPageCell", "This page cannot be drawn."));
    } else {
        const QRectF cross = QRectF(QPointF(), place.size() / 3)
                                 .translated(place.center() - QPointF(place.width(), place.height()) / 6);
        painter.drawLine(cross.topLeft(), cross.bottomRight());
        painter.drawLine(cross.topRight(), cross.bottomLeft());
    }
    painter.restore();
}

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
    const double aspect = std::clamp(box->crop.width() / box->crop.height(), 1 / mostAspect, mostAspect);
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

bool PDFPageCell::needsImage() const { return m_width > tooSmall && m_pictureKey != renderKey(); }

void PDFPageCell::setPicture(const QString &renderKey, const PagePicture &picture)
{
    m_pictureKey = renderKey;
    m_undrawable = picture.isNull();
    if (!picture.isNull())
        m_picture = picture;
}

void PDFPageCell::paint(QPainter &painter, const QRectF &place, bool dark) const
{
    PageShadow::paint(painter, place);
    painter.save();
    if (m_picture.isNull()) {
        painter.fillRect(place, Qt::white);
        if (m_undrawable)
            paintUndrawable(painter, place);
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(place, m_picture.forWidth(place.width() * painter.device()->devicePixelRatioF()));
    }
    if (dark) {
        painter.setCompositionMode(QPainter::CompositionMode_Difference);
        painter.fillRect(place, Qt::white);
        painter.setCompositionMode(QPainter::CompositionMode_Lighten);
        painter.fillRect(place, darkPaper);
    }
    painter.restore();
}
