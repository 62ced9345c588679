#include "design/ElidedLabel.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

ElidedLabel::ElidedLabel(Theme::Type type, Theme::Role color, Qt::TextElideMode mode, QWidget *parent)
    : QLabel(parent)
    , m_color(color)
    , m_mode(mode)
{
    // File names and titles may hold anything, also what looks like mark-up.
    setTextFormat(Qt::PlainText);
    setFont(Theme::font(type));
}

void ElidedLabel::setColor(Theme::Role color)
{
    if (color == m_color)
        return;
    m_color = color;
    update();
}

QString ElidedLabel::shownText() const
{
    // Whatever begins a new line would hide the rest of the text.
    QString line = text();
    for (QChar &c : line) {
        if (c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph
            || c.category() == QChar::Other_Control)
            c = u' ';
    }
    return fontMetrics().elidedText(line, m_mode, contentsRect().width());
}

QSize ElidedLabel::minimumSizeHint() const { return { fontMetrics().averageCharWidth() * 3, sizeHint().height() }; }

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && shownText() != text()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text().toHtmlEscaped(), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const Theme::Colors &colors = Theme::colors(palette());
    painter.setPen(isEnabled() ? colors.*m_color : colors.disabled);
    // The window's direction says on which side a text stands, its own letters where its end is.
    const Qt::Alignment side = QStyle::visualAlignment(layoutDirection(), alignment());
    painter.setLayoutDirection(text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(contentsRect(), int(side | Qt::AlignAbsolute) | Qt::TextSingleLine, shownText());
}
