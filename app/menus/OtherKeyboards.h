#pragma once

#include <QObject>

class QAction;
class QKeyEvent;
class QMainWindow;

/// Finds the item of a key where keyboards differ.
///
/// - Where one sign is both another's with Shift and itself, as 1 on French keyboards and + on English ones, Qt finds
///   two items and chooses neither: the one that has the sign with Shift as its key is chosen.
/// - Where a digit needs Shift, the keys of the digit row stand for their digits without it. What such a key says by
///   itself goes first: a minus sign stays one.
class OtherKeyboards final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OtherKeyboards)

public:
    /// @param window whose menus have the keys; it owns this
    explicit OtherKeyboards(QMainWindow &window);
    ~OtherKeyboards() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// The item that Qt would not find by itself.
    QAction *itemOf(const QKeyEvent &event) const;
    QAction *itemWith(int keys) const;

    QMainWindow &m_window;
};
