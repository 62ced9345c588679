#include "pdf/viewing/PageGridLayout.h"

#include <algorithm>

PageGridLayout::PageGridLayout(const std::vector<double> &aspects, const Measures &measures)
    : m_measures(measures)
    , m_columns(std::clamp(measures.pagesAcross, 1, std::max(int(aspects.size()), 1)))
    , m_cellWidth((measures.width - 2 * measures.margin - measures.spacing * (m_columns - 1)) / m_columns)
{
    m_heights.reserve(aspects.size());
    for (const double aspect : aspects)
        m_heights.push_back(std::max(m_cellWidth, 0.0) / aspect);
    double top = measures.margin;
    for (auto page = m_heights.begin(); page != m_heights.end();) {
        const auto end = page + std::min(std::ptrdiff_t(m_columns), m_heights.end() - page);
        const double height = *std::max_element(page, end);
        m_rows.push_back({ top, height });
        top += height + measures.spacing;
        page = end;
    }
}

double PageGridLayout::height() const
{
    return m_rows.empty() ? 2 * m_measures.margin : m_rows.back().top + m_rows.back().height + m_measures.margin;
}

QRectF PageGridLayout::cell(int index) const
{
    const Row &row = m_rows.at(size_t(index / m_columns));
    const double height = m_heights.at(size_t(index));
    const double left = m_measures.margin + (index % m_columns) * (m_cellWidth + m_measures.spacing);
    return { left, row.top + (row.height - height) / 2, std::max(m_cellWidth, 0.0), height };
}

PageGridLayout::Range PageGridLayout::pagesBetween(double top, double bottom) const
{
    const auto endsAbove = [](const Row &row, double y) { return row.top + row.height <= y; };
    const auto startsBelow = [](double y, const Row &row) { return y <= row.top; };
    const auto first = std::lower_bound(m_rows.begin(), m_rows.end(), top, endsAbove);
    const auto end = std::upper_bound(first, m_rows.end(), bottom, startsBelow);
    return { int(first - m_rows.begin()) * m_columns,
        std::min(int(end - m_rows.begin()) * m_columns, pageCount()) - 1 };
}

double PageGridLayout::halfPageFrom(double top, int direction, double farthest) const
{
    // A turn is one that is seen: the margin above the first row is none.
    const double least = farthest / 8;
    double found = top + direction * farthest;
    for (const Row &row : m_rows) {
        for (const double stop : { row.top, row.top + row.height / 2 }) {
            if (direction > 0 && stop > top + least)
                found = std::min(found, stop);
            else if (direction < 0 && stop < top - least)
                found = std::max(found, stop);
        }
    }
    return found;
}
