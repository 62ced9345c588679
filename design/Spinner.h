#pragma once

#include <QBasicTimer>
#include <QWidget>

/// A small ring that turns while something takes its time.
class Spinner final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Spinner)

public:
    explicit Spinner(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QBasicTimer m_timer;
    /// Since it came up; 0...11, a twelfth of a turn each.
    int m_step = 0;
};
