#pragma once

#include <QAbstractButton>

/// A line of text that can be switched on and off: with a switch at its end or a check box before it.
class Toggle final : public QAbstractButton {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Toggle)

public:
    enum class Look { Switch, CheckBox };

    /// From the edge to what is shown: room for the focus ring, clear of the text.
    static constexpr int outset = 6;

    Toggle(Look look, const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool hitButton(const QPoint &position) const override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintSwitch(QPainter &painter) const;
    void paintCheckBox(QPainter &painter) const;

    const Look m_look;
};
