#pragma once

#include "app/menus/AloneTrack.h"

#include <QMenu>

class AlphaTabController;
class MenuItems;

/// What helps to practise: what is repeated, and which tracks are seen and heard.
class PracticeMenu final : public QMenu {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PracticeMenu)

public:
    explicit PracticeMenu(AlphaTabController &controller, QWidget *parent = nullptr);
    ~PracticeMenu() override;

private:
    void addRange(const MenuItems &items);
    void addLetGo(const MenuItems &items);
    /// What Escape does where it has nothing to let go of.
    void leaveFullScreen();
    void showTrainer();
    void addTracks();
    void showAlone(int id);

    AlphaTabController &m_controller;
    AloneTrack m_alone;
};
