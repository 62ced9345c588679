#pragma once

#include <QScrollArea>

class AlphaTabController;

/// What covers the score area while there is no score: an invitation to open one.
class EmptyState final : public QScrollArea {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EmptyState)

public:
    explicit EmptyState(AlphaTabController &controller, QWidget *parent = nullptr);

private:
    QWidget *makeInvitation();

    AlphaTabController &m_controller;
};
