#include "design/WrappedText.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>

WrappedText::WrappedText(const QString &text, Theme::Type type, Theme::Role color, QWidget *parent)
    : QLabel(text, parent)
    , m_color(color)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setAlignment(Qt::AlignCenter);
    setFont(Theme::font(type));
    recolor();
}

void WrappedText::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        recolor();
}

void WrappedText::recolor()
{
    // Not this text's own palette: its colour is the last one, and tells nothing of the surroundings' any more.
    const QColor wanted = Theme::colors(QApplication::palette(this)).*m_color;
    if (palette().color(foregroundRole()) == wanted)
        return;
    QPalette own;
    own.setColor(foregroundRole(), wanted);
    setPalette(own);
}
