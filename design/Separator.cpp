#include "design/Separator.h"

#include "design/Theme.h"

#include <QPainter>

Separator::Separator(Qt::Orientation orientation, int length, QWidget *parent)
    : QWidget(parent)
{
    if (orientation == Qt::Horizontal) {
        setFixedHeight(1);
        if (length > 0)
            setFixedWidth(length);
    } else {
        setFixedWidth(1);
        if (length > 0)
            setFixedHeight(length);
    }
}

void Separator::paintEvent(QPaintEvent *) { QPainter(this).fillRect(rect(), Theme::colors(palette()).separator); }
