#pragma once

#include <QPointer>
#include <QWidget>

/// A panel that hangs on a control with an arrow, above or below it, wherever there is room.
///
/// It lies inside the window and is no window of its own: it needs neither a compositor for its round corners nor a
/// grab of the pointer, and the window keeps the focus. Escape and a press outside close it; the press goes on to
/// whatever is there. While it is open, Tab stays inside.
class Popover final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Popover)

public:
    /// Shows `content`, which it takes, at `anchor`. Deletes itself after closing.
    static Popover *open(QWidget *content, QWidget &anchor);
    ~Popover() override;

    void dismiss();

Q_SIGNALS:
    void closed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    Popover(QWidget *content, QWidget &anchor);

    void place();
    bool holds(const QWidget *widget) const;

    const QPointer<QWidget> m_anchor;
    /// The arrow points down when the panel is above its control.
    bool m_above = true;
    int m_arrowX = 0;
    bool m_closing = false;
};
