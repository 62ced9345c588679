#pragma once

#include <QMenu>

class AlphaTabController;
class MenuItems;

/// Where the music goes on, how fast, and what is heard with it.
class PlaybackMenu final : public QMenu {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PlaybackMenu)

public:
    explicit PlaybackMenu(AlphaTabController &controller, QWidget *parent = nullptr);
    ~PlaybackMenu() override;

private:
    void addMoves(const MenuItems &items);
    void addSections();
    void addSpeeds(const MenuItems &items);
    void addSwitches(const MenuItems &items);

    AlphaTabController &m_controller;
};
