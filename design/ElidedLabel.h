#pragma once

#include "design/Theme.h"

#include <QLabel>

/// One line of text that is shortened with an ellipsis where room is scarce; the tooltip then has the whole.
class ElidedLabel final : public QLabel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ElidedLabel)

public:
    explicit ElidedLabel(Theme::Type type = Theme::Type::Body, Theme::Role color = &Theme::Colors::text,
        Qt::TextElideMode mode = Qt::ElideRight, QWidget *parent = nullptr);

    void setColor(Theme::Role color);
    Theme::Role color() const { return m_color; }

    /// What is to be read at the present width.
    QString shownText() const;

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    Theme::Role m_color;
    const Qt::TextElideMode m_mode;
};
