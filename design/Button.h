#pragma once

#include "design/Theme.h"

#include <QAbstractButton>

/// A push button with an icon, a text, or both, in one of the window's looks.
///
/// Enter presses it as well as the space bar does: while music can play, the space bar belongs to the transport.
class Button final : public QAbstractButton {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Button)

public:
    enum class Look {
        /// Nothing but its content; for lists.
        Plain,
        /// Shows its body under the pointer; for tool bars.
        Tool,
        /// Always has a body.
        Standard,
        /// The one button of a place that is meant to be pressed first.
        Prominent,
    };

    explicit Button(Look look, QWidget *parent = nullptr);

    void setIconName(const QString &identifier);
    /// The colour of icon and text in a Plain, Tool or Standard button.
    void setTint(Theme::Role tint);
    Theme::Role tint() const { return m_tint; }
    const QString &iconName() const { return m_iconName; }

    /// Room around the button that presses it too. What is painted stays within.
    void setReach(const QMargins &reach);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintBody(QPainter &painter) const;
    QColor contentColor() const;
    bool showsChecked() const;
    QRect body() const;

    const Look m_look;
    QMargins m_reach;
    QString m_iconName;
    Theme::Role m_tint = &Theme::Colors::text;
};
