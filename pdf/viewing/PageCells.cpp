#include "pdf/viewing/PageCells.h"

#include <algorithm>

namespace {

/// What all pictures together may take before pages outside the view go without: 192 MiB.
constexpr qsizetype budget = qsizetype(192) << 20;

qsizetype bytes(const PDFPageCell &cell)
{
    const QSize size = cell.imageSize().value_or(QSize(0, 0));
    return std::max(6 * qsizetype(size.width()) * size.height(), cell.picture().sizeInBytes());
}

} // namespace

PageCells::PageCells(std::shared_ptr<PageRenderQueue> queue, std::shared_ptr<const PDFDocument> document,
    PageRenderQueue::Urgency onScreen, QObject *parent)
    : QObject(parent)
    , m_queue(std::move(queue))
    , m_document(std::move(document))
    , m_onScreen(onScreen)
{
}

void PageCells::keep(const Wanted &wanted)
{
    m_width = wanted.width;
    std::map<int, PDFPageCell> before;
    before.swap(m_cells);
    PageRenderQueue::Requests requests;
    qsizetype used = 0;
    const auto add = [&](int index, PageRenderQueue::Urgency urgency) {
        auto kept = before.extract(index);
        PDFPageCell cell = kept ? std::move(kept.mapped()) : PDFPageCell(m_document, index, m_width);
        cell.setWidth(m_width);
        used += bytes(cell);
        if (urgency != m_onScreen && used > budget)
            return false;
        if (const auto size = cell.imageSize(); size && cell.needsImage())
            requests.push_back({ index, cell.renderKey(), *size, qRound(m_width * wanted.density), urgency });
        m_cells.emplace(index, std::move(cell));
        return true;
    };
    for (int index = wanted.visible.first; index <= wanted.visible.last; ++index)
        add(index, m_onScreen);
    // Outwards on both sides at once: what the budget leaves out is what is furthest away.
    int below = wanted.visible.last + 1;
    int above = wanted.visible.first - 1;
    bool fits = true;
    while (fits && (below <= wanted.nearby.last || above >= wanted.nearby.first)) {
        if (below <= wanted.nearby.last)
            fits = add(below++, PageRenderQueue::Urgency::Nearby);
        if (fits && above >= wanted.nearby.first)
            fits = add(above--, PageRenderQueue::Urgency::Nearby);
    }
    for (int index = wanted.passing.first; index <= wanted.passing.last; ++index)
        m_cells.insert(before.extract(index));
    m_queue->want(*this, m_document, std::move(requests),
        [this](const PageRenderQueue::Request &request, const PagePicture &picture) { take(request, picture); });
}

void PageCells::take(const PageRenderQueue::Request &request, const PagePicture &picture)
{
    const auto found = m_cells.find(request.index);
    if (found == m_cells.end())
        return;
    PDFPageCell &cell = found->second;
    // A picture for a width that is over is better than a white page, but than nothing else.
    if (request.key != cell.renderKey() && !cell.image().isNull())
        return;
    cell.setPicture(request.key, picture);
    Q_EMIT changed(request.index);
}

PDFPageCell PageCells::cell(int index) const
{
    const auto found = m_cells.find(index);
    return found == m_cells.end() ? PDFPageCell(m_document, index, m_width) : found->second;
}

qsizetype PageCells::memory() const
{
    qsizetype sum = 0;
    for (const auto &[index, cell] : m_cells)
        sum += cell.picture().sizeInBytes();
    return sum;
}
