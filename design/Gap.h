#pragma once

#include <QSpacerItem>

/// Horizontal room between two items that gives way, down to a minimum, before the items themselves do.
class Gap final : public QSpacerItem {
public:
    Gap(int minimum, int ideal)
        : QSpacerItem(ideal, 0, QSizePolicy::Maximum, QSizePolicy::Minimum)
        , m_minimum(minimum)
    {
    }

    QSize minimumSize() const override { return { m_minimum, 0 }; }

private:
    const int m_minimum;
};
