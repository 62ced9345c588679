#pragma once

#include <QRectF>

#include <vector>

/// Where the pages of a document stand when so many of them stand side by side: geometry without a single page drawn.
///
/// Lengths are device-independent pixels, y downwards from the top of the whole grid, which is padded by the margin on
/// all sides. Within a row, the pages are centred on one another.
class PageGridLayout final {
public:
    struct Measures {
        /// What the container has to give.
        double width = 0;
        /// Below 1 counts as 1.
        int pagesAcross = 1;
        /// Between pages in both directions.
        double spacing = 0;
        double margin = 0;
    };

    /// Pages by index, `last` included; empty when `last` is smaller.
    struct Range {
        int first = 0;
        int last = -1;

        bool contains(int index) const { return index >= first && index <= last; }
        bool operator==(const Range &) const = default;
    };

    PageGridLayout() = default;
    /// @param aspects width over height of each page
    PageGridLayout(const std::vector<double> &aspects, const Measures &measures);

    int pageCount() const { return int(m_heights.size()); }
    int columns() const { return m_columns; }
    /// Not more than 0 when the width does not even hold margins and spacing.
    double cellWidth() const { return m_cellWidth; }
    double height() const;
    /// What page `index` takes; its width is never negative.
    QRectF cell(int index) const;
    /// The whole rows that show something between the two heights.
    Range pagesBetween(double top, double bottom) const;
    /// The next beginning or middle of a row from `top` on, or back where `direction` is negative; `farthest` away at
    /// most.
    double halfPageFrom(double top, int direction, double farthest) const;

private:
    struct Row {
        double top;
        double height;
    };
    int rowCount() const { return int(m_rows.size()); }

    Measures m_measures;
    int m_columns = 1;
    double m_cellWidth = 0;
    std::vector<double> m_heights;
    std::vector<Row> m_rows;
};
