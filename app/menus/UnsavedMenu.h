#pragma once

#include <QMenu>

class AlphaTabController;

/// Says in the menu bar that settings cannot be saved, for as long as that is so, and in its items where and why.
class UnsavedMenu final : public QMenu {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UnsavedMenu)

public:
    UnsavedMenu(AlphaTabController &controller, QWidget *parent);
    ~UnsavedMenu() override;

private:
    void fill(const QMap<QString, QString> &files);

    AlphaTabController &m_controller;
};
