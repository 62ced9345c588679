#include "design/Surface.h"

#include <QPaintEvent>
#include <QPainter>

Surface::Surface(Theme::Role fill, QWidget *parent)
    : QWidget(parent)
    , m_fill(fill)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

Surface::~Surface() = default;

void Surface::paintEvent(QPaintEvent *event)
{
    QPainter(this).fillRect(event->rect(), Theme::colors(palette()).*m_fill);
}
