#pragma once

#include <QWidget>

/// A hairline between two groups.
class Separator final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Separator)

public:
    /// @param length across the other direction; 0 to fill what there is
    explicit Separator(Qt::Orientation orientation, int length = 0, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
