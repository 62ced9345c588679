#pragma once

#include <QMenu>

class AlphaTabController;
class MenuItems;
class QMainWindow;

/// How the window shows what it shows.
class ViewMenu final : public QMenu {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ViewMenu)

public:
    ViewMenu(AlphaTabController &controller, QMainWindow &window);
    ~ViewMenu() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addPlay();
    void addSizes(const MenuItems &items);
    void addFretboard(const MenuItems &items);
    void addStaves(const MenuItems &items);
    void addPages(const MenuItems &items);
    void addFullScreen(const MenuItems &items);
    void showFullScreen(bool on);

    AlphaTabController &m_controller;
    QMainWindow &m_window;
    QAction *m_fullScreen = nullptr;
};
