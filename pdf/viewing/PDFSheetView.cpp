#include "pdf/viewing/PDFSheetView.h"

#include "controller/AlphaTabController.h"
#include "design/Theme.h"
#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PageCells.h"
#include "pdf/viewing/PageShadow.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QVariantAnimation>

#include <cmath>
#include <limits>

namespace {

constexpr int animationTime = 350; // milliseconds
constexpr int arrowStep = 40;
/// What a page key leaves of the page before, so that the eye finds its way.
constexpr int overlap = 40;

std::vector<double> aspectsOf(const PDFDocument &document)
{
    std::vector<double> aspects;
    aspects.reserve(std::size_t(document.pageCount()));
    for (int index = 0; index < document.pageCount(); ++index)
        aspects.push_back(PDFPageCell::aspect(document, index));
    return aspects;
}

/// On whole device pixels, so that the parts of a page which scrolling uncovers one by one fit together.
QRectF snapped(const QRectF &rect, qreal scale)
{
    const auto snap = [scale](double length) { return std::round(length * scale) / scale; };
    return { QPointF(snap(rect.left()), snap(rect.top())), QPointF(snap(rect.right()), snap(rect.bottom())) };
}

} // namespace

PDFSheetView::PDFSheetView(AlphaTabController &controller, std::shared_ptr<const PDFDocument> document, double spacing,
    double margin, std::shared_ptr<PageRenderQueue> queue, QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_controller(controller)
    , m_document(std::move(document))
    , m_spacing(spacing)
    , m_margin(margin)
    , m_aspects(aspectsOf(*m_document))
    , m_cells(new PageCells(std::move(queue), m_document, PageRenderQueue::Urgency::OnScreen, this))
    , m_scrolling(new QVariantAnimation(this))
    , m_anchor{ .gap = margin }
{
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Sheet music"));
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    verticalScrollBar()->setAutoFillBackground(true);
    colorScrollBar();
    m_scrolling->setDuration(animationTime);
    m_scrolling->setEasingCurve(QEasingCurve::InOutCubic);
    connect(m_scrolling, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        const QScopedValueRollback moving(m_moving, true);
        verticalScrollBar()->setValue(value.toInt());
    });
    connect(m_scrolling, &QVariantAnimation::finished, this, &PDFSheetView::keepCells);
    connect(m_cells, &PageCells::changed, this,
        [this](int page) { viewport()->update(placeOf(page).toAlignedRect().adjusted(-1, -1, 1, 1)); });
    controller.pdfPagesAcross.onChange(this, [this](int) { layOut(); });
    controller.pdfScrollTarget.onChange(this, [this](const std::optional<int> &page) {
        if (!page)
            return;
        scrollTo(*page);
        m_controller.pdfScrollTarget = std::nullopt;
    });
    controller.darkPaper.onChange(this, [this](bool) { viewport()->update(); });
    controller.pdfTurn.onChange(this, [this](int direction) { turn(direction); });
    layOut();
}

PDFSheetView::~PDFSheetView() = default;

PDFSheetView::Anchor PDFSheetView::anchorAt(double y) const
{
    const int page
        = std::min(m_layout.pagesBetween(y, std::numeric_limits<double>::infinity()).first, m_layout.pageCount() - 1);
    const QRectF cell = m_layout.cell(page);
    // The scroll bar knows whole pixels only; a page that was brought to the top is at the top.
    if (std::abs(y - cell.top()) < 1)
        return { .page = page };
    if (y < cell.top() || cell.isEmpty())
        return { .page = page, .gap = cell.top() - y };
    return { .page = page, .share = (y - cell.top()) / cell.height() };
}

double PDFSheetView::heightOf(const Anchor &anchor) const
{
    const QRectF cell = m_layout.cell(anchor.page);
    return cell.top() - anchor.gap + anchor.share * cell.height();
}

void PDFSheetView::layOut()
{
    // The whole view's width, not the viewport's: the scroll bar stands in the margin, and pages do not change their
    // size when it comes or goes.
    m_layout = PageGridLayout(m_aspects,
        { .width = double(width()),
            .pagesAcross = m_controller.pdfPagesAcross,
            .spacing = m_spacing,
            .margin = m_margin });
    m_scrolling->stop();
    const QScopedValueRollback moving(m_moving, true);
    QScrollBar *bar = verticalScrollBar();
    const int view = viewport()->height();
    const double beyond = std::ceil(m_layout.height()) - view;
    bar->setRange(0, int(std::clamp(beyond, 0.0, double(std::numeric_limits<int>::max()))));
    bar->setPageStep(std::max(view - overlap, 1));
    bar->setSingleStep(arrowStep);
    bar->setValue(qRound(std::clamp(heightOf(m_anchor), 0.0, double(bar->maximum()))));
    keepCells();
    viewport()->update();
}

/// At once and without gliding: who plays reads on in the same moment.
void PDFSheetView::turn(int direction)
{
    QScrollBar *bar = verticalScrollBar();
    const int screenful = bar->pageStep();
    const int step = m_controller.pdfHalfTurns
        ? qRound(m_layout.halfPageFrom(bar->value(), direction, screenful)) - bar->value()
        : direction * screenful;
    m_scrolling->stop();
    bar->setValue(bar->value() + step);
}

void PDFSheetView::scrollTo(int page)
{
    if (page < 0 || page >= m_layout.pageCount())
        return;
    m_scrolling->stop();
    m_anchor = { .page = page };
    const QScrollBar *bar = verticalScrollBar();
    const int target = int(std::min(std::round(m_layout.cell(page).top()), double(bar->maximum())));
    if (target == bar->value())
        return;
    m_scrolling->setStartValue(bar->value());
    m_scrolling->setEndValue(target);
    m_scrolling->start();
    keepCells();
}

/// Asks for the pages where the view is, or where it will be in a moment.
void PDFSheetView::keepCells()
{
    if (!isVisible())
        return;
    const bool scrolling = m_scrolling->state() == QAbstractAnimation::Running;
    const int now = verticalScrollBar()->value();
    const int top = scrolling ? m_scrolling->endValue().toInt() : now;
    const int view = viewport()->height();
    m_cells->keep({
        .width = m_layout.cellWidth(),
        .density = devicePixelRatioF(),
        .visible = m_layout.pagesBetween(top, top + view),
        .nearby = m_layout.pagesBetween(top - view, top + 2 * view),
        .passing = scrolling ? m_layout.pagesBetween(now, now + view) : PageGridLayout::Range(),
    });
}

void PDFSheetView::scrollContentsBy(int, int dy)
{
    if (!m_moving) {
        m_scrolling->stop();
        m_anchor = anchorAt(verticalScrollBar()->value());
    }
    if (m_showsFocus)
        viewport()->update();
    else
        viewport()->scroll(0, dy);
    keepCells();
}

void PDFSheetView::resizeEvent(QResizeEvent *) { layOut(); }

void PDFSheetView::showEvent(QShowEvent *event)
{
    QAbstractScrollArea::showEvent(event);
    keepCells();
}

QRectF PDFSheetView::placeOf(int page) const
{
    return snapped(m_layout.cell(page).translated(0, -verticalScrollBar()->value()), devicePixelRatioF());
}

void PDFSheetView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), Theme::colors(palette()).viewport);
    const QRect dirty
        = event->rect().adjusted(-PageShadow::reach, -PageShadow::reach, PageShadow::reach, PageShadow::reach);
    const int top = verticalScrollBar()->value();
    const PageGridLayout::Range pages = m_layout.pagesBetween(top + dirty.top(), top + dirty.bottom() + 1);
    for (int page = pages.first; page <= pages.last; ++page) {
        const QRectF place = placeOf(page);
        if (place.intersects(dirty))
            m_cells->cell(page).paint(painter, place, m_controller.darkPaper);
    }
    if (m_showsFocus)
        Theme::paintFocusRing(painter, viewport()->rect(), Theme::radius - 3, palette());
}

void PDFSheetView::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        colorScrollBar();
}

/// The scroll bar paints its handle only; behind it lies its palette.
void PDFSheetView::colorScrollBar()
{
    QPalette colors;
    colors.setColor(QPalette::Window, Theme::colors(palette()).viewport);
    verticalScrollBar()->setPalette(colors);
}

void PDFSheetView::keyPressEvent(QKeyEvent *event)
{
    QScrollBar *bar = verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_PageUp:
        turn(-1);
        break;
    case Qt::Key_PageDown:
        turn(1);
        break;
    case Qt::Key_Home:
        bar->setValue(bar->minimum());
        break;
    case Qt::Key_End:
        bar->setValue(bar->maximum());
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PDFSheetView::focusInEvent(QFocusEvent *event)
{
    // Who came with Tab has to see where; a whole window of notation needs no ring for a click.
    m_showsFocus = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    viewport()->update();
}

void PDFSheetView::focusOutEvent(QFocusEvent *)
{
    m_showsFocus = false;
    viewport()->update();
}
