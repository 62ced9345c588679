#include "pdf/viewing/PageList.h"

#include "design/Theme.h"
#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PageCells.h"
#include "pdf/viewing/PageListAccessible.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double thumbnailWidth = 54;
/// Between a thumbnail and its text.
constexpr int gap = 10;
/// From the list's edges to a row's body, and from there to the thumbnail.
constexpr int outside = 6;
constexpr int inside = 8;
/// Above and below a thumbnail, within its row.
constexpr int padding = 6;
/// A row has to hold its text, however flat the page is.
constexpr double lowestThumbnail = 20;

PageGridLayout rowsFor(const PDFDocument &document)
{
    std::vector<double> aspects;
    aspects.reserve(std::size_t(document.pageCount()));
    for (int page = 0; page < document.pageCount(); ++page)
        aspects.push_back(std::min(PDFPageCell::aspect(document, page), thumbnailWidth / lowestThumbnail));
    return { aspects, { .width = thumbnailWidth + 2 * padding, .spacing = 2 * padding, .margin = padding } };
}

} // namespace

PageList::PageList(
    const std::shared_ptr<const PDFDocument> &document, std::shared_ptr<PageRenderQueue> queue, QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_layout(rowsFor(*document))
    , m_cells(new PageCells(std::move(queue), document, PageRenderQueue::Urgency::Thumbnail, this))
{
    PageListAccessible::install();
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::TabFocus);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setMouseTracking(true);
    verticalScrollBar()->setAutoFillBackground(true);
    colorScrollBar();
    connect(m_cells, &PageCells::changed, this, [this](int page) { viewport()->update(rowOf(page)); });
}

PageList::~PageList() = default;

QString PageList::nameOf(int page) { return tr("Page %1").arg(page + 1); }

QRect PageList::rowOf(int page) const
{
    const QRectF cell = m_layout.cell(page);
    const QRectF row(outside, cell.top() - padding - verticalScrollBar()->value(), viewport()->width() - 2 * outside,
        cell.height() + 2 * padding);
    return row.toRect();
}

std::optional<int> PageList::pageAt(QPoint position) const
{
    const double y = position.y() + verticalScrollBar()->value();
    const PageGridLayout::Range near = m_layout.pagesBetween(y - padding, y + padding);
    for (int page = near.first; page <= near.last; ++page) {
        if (rowOf(page).contains(position))
            return page;
    }
    return std::nullopt;
}

void PageList::choose(int page)
{
    m_current = page;
    viewport()->update();
    Q_EMIT chosen(page);
}

bool PageList::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        setUnderPointer(std::nullopt);
    return QAbstractScrollArea::viewportEvent(event);
}

void PageList::setUnderPointer(std::optional<int> page)
{
    if (std::exchange(m_underPointer, page) != page)
        viewport()->update();
}

void PageList::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_pressed = pageAt(event->position().toPoint());
    viewport()->update();
}

void PageList::mouseMoveEvent(QMouseEvent *event) { setUnderPointer(pageAt(event->position().toPoint())); }

void PageList::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    viewport()->update();
    const std::optional<int> pressed = std::exchange(m_pressed, std::nullopt);
    if (pressed && pressed == pageAt(event->position().toPoint()))
        choose(*pressed);
}

int PageList::rowsInView() const
{
    const int top = verticalScrollBar()->value();
    const PageGridLayout::Range pages = m_layout.pagesBetween(top, top + viewport()->height());
    return std::max(pages.last - pages.first, 1);
}

void PageList::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Up:
        return moveTo(m_current - 1);
    case Qt::Key_Down:
        return moveTo(m_current + 1);
    case Qt::Key_PageUp:
        return moveTo(m_current - rowsInView());
    case Qt::Key_PageDown:
        return moveTo(m_current + rowsInView());
    case Qt::Key_Home:
        return moveTo(0);
    case Qt::Key_End:
        return moveTo(pageCount() - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return choose(m_current);
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PageList::moveTo(int page)
{
    m_current = std::clamp(page, 0, pageCount() - 1);
    const QRect row = rowOf(m_current);
    QScrollBar *bar = verticalScrollBar();
    if (row.top() < 0)
        bar->setValue(bar->value() + row.top());
    else if (row.bottom() >= viewport()->height())
        bar->setValue(bar->value() + row.bottom() + 1 - viewport()->height());
    viewport()->update();
    if (hasFocus())
        PageListAccessible::announceFocus(*this, m_current);
}

void PageList::focusInEvent(QFocusEvent *)
{
    // The list may have been scrolled away from where the keys were last.
    const int top = verticalScrollBar()->value();
    const PageGridLayout::Range pages = m_layout.pagesBetween(top, top + viewport()->height());
    moveTo(pages.contains(m_current) ? m_current : pages.first);
}

void PageList::focusOutEvent(QFocusEvent *) { viewport()->update(); }

void PageList::resizeEvent(QResizeEvent *)
{
    QScrollBar *bar = verticalScrollBar();
    const double beyond = std::ceil(m_layout.height()) - viewport()->height();
    bar->setRange(0, int(std::clamp(beyond, 0.0, double(std::numeric_limits<int>::max()))));
    bar->setPageStep(viewport()->height());
    bar->setSingleStep(int(thumbnailWidth) / 2);
    keepCells();
}

void PageList::showEvent(QShowEvent *event)
{
    QAbstractScrollArea::showEvent(event);
    keepCells();
}

void PageList::keepCells()
{
    if (!isVisible())
        return;
    const int top = verticalScrollBar()->value();
    const int view = viewport()->height();
    m_cells->keep({
        .width = thumbnailWidth,
        .density = devicePixelRatioF(),
        .visible = m_layout.pagesBetween(top, top + view),
        .nearby = m_layout.pagesBetween(top - view, top + 2 * view),
    });
}

void PageList::scrollContentsBy(int, int)
{
    viewport()->update();
    keepCells();
}

void PageList::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        colorScrollBar();
}

void PageList::colorScrollBar()
{
    QPalette colors;
    colors.setColor(QPalette::Window, Theme::colors(palette()).sidebar);
    verticalScrollBar()->setPalette(colors);
}

void PageList::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), Theme::colors(palette()).sidebar);
    const int top = verticalScrollBar()->value() + event->rect().top();
    const PageGridLayout::Range pages = m_layout.pagesBetween(top - padding, top + event->rect().height() + padding);
    for (int page = pages.first; page <= pages.last; ++page)
        paintRow(painter, page);
}

void PageList::paintRow(QPainter &painter, int page) const
{
    const Theme::Colors &colors = Theme::colors(palette());
    const QRect row = rowOf(page);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (m_underPointer == page && (!m_pressed || m_pressed == page)) {
        painter.setBrush(m_pressed ? colors.pressed : colors.hover);
        painter.drawRoundedRect(row, Theme::radius, Theme::radius);
    }
    const PDFPageCell cell = m_cells->cell(page);
    const double left = isRightToLeft() ? row.right() + 1 - inside - thumbnailWidth : row.left() + inside;
    QRectF place(left, 0, thumbnailWidth, thumbnailWidth / cell.aspect());
    place.moveTop(std::round(row.top() + (row.height() - place.height()) / 2));
    painter.setRenderHint(QPainter::Antialiasing, false);
    cell.paint(painter, place);
    painter.setPen(colors.text);
    const QRect beside = row.adjusted(inside + int(thumbnailWidth) + gap, 0, -inside, 0);
    const QRect text = QStyle::visualRect(layoutDirection(), row, beside);
    const Qt::Alignment side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
    painter.drawText(text, int(side | Qt::AlignAbsolute) | Qt::TextSingleLine,
        fontMetrics().elidedText(nameOf(page), Qt::ElideRight, text.width()));
    if (hasFocus() && page == m_current)
        Theme::paintFocusRing(painter, row, Theme::radius - 1, palette());
    painter.restore();
}
