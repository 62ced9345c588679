#include "design/IconLabel.h"

#include "design/Icons.h"

#include <QPainter>

IconLabel::IconLabel(QString identifier, int size, Theme::Role color, QWidget *parent)
    : QWidget(parent)
    , m_identifier(std::move(identifier))
    , m_color(color)
{
    setFixedSize(size, size);
}

void IconLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Icons::paint(painter, m_identifier, rect(), width(), Theme::colors(palette()).*m_color);
}
