#pragma once

#include <QTextBrowser>

class QMenu;
class QMenuBar;

/// Every key of the program on one page, as the menus have them.
class ShortcutsWindow final : public QTextBrowser {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ShortcutsWindow)

public:
    ShortcutsWindow(const QMenuBar &menus, QWidget *parent);
    ~ShortcutsWindow() override;

private:
    static QString everywhere();
    static QString keysOf(const QMenu &menu);
};
