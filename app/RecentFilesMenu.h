#pragma once

#include <QMenu>

class AlphaTabController;

/// The recent files as a menu, filled when it opens.
class RecentFilesMenu final : public QMenu {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RecentFilesMenu)

public:
    RecentFilesMenu(AlphaTabController &controller, QWidget *parent);
    ~RecentFilesMenu() override;

private:
    void fill();

    AlphaTabController &m_controller;
};
