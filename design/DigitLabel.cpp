#include "design/DigitLabel.h"

#include "design/Theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

DigitLabel::DigitLabel(const QString &widest, Qt::Alignment alignment, QWidget *parent)
    : QLabel(parent)
{
    setAlignment(alignment | Qt::AlignVCenter);
    setFont(Theme::font(Theme::Type::Caption));
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        m_digitWidth = std::max(m_digitWidth, QFontMetricsF(font()).horizontalAdvance(QChar(digit)));
    setFixedSize(room(widest), fontMetrics().height());
}

void DigitLabel::display(const QString &text)
{
    if (room(text) > width())
        setFixedWidth(room(text));
    setText(text);
}

void DigitLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(Theme::colors(palette()).secondary);
    const QString line = text();
    qreal x = alignment() & Qt::AlignRight ? width() - room(line) : 0;
    for (const QChar character : line) {
        const QRectF place(x, 0, cell(character), height());
        painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, QString(character));
        x += place.width();
    }
}

qreal DigitLabel::cell(QChar character) const
{
    return character.isDigit() ? m_digitWidth : QFontMetricsF(font()).horizontalAdvance(character);
}

int DigitLabel::room(const QString &text) const
{
    qreal sum = 0;
    for (const QChar character : text)
        sum += cell(character);
    return static_cast<int>(std::ceil(sum));
}
