#pragma once

#include <QLabel>

/// A short number whose digits all take the same room, so that it stands still while it counts.
///
/// It keeps its size as long as the text fits: a change repaints this label and nothing around it.
class DigitLabel final : public QLabel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DigitLabel)

public:
    /// @param widest a text of the greatest length to be expected; a longer one widens the label
    DigitLabel(const QString &widest, Qt::Alignment alignment, QWidget *parent = nullptr);

    void display(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    qreal cell(QChar character) const;
    int room(const QString &text) const;

    qreal m_digitWidth = 0;
};
