#pragma once

#include "design/Surface.h"

class AlphaTabController;

/// The strip at the top of the window: open, and what can be done with what is shown.
class Toolbar final : public Surface {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Toolbar)

public:
    explicit Toolbar(AlphaTabController &controller, QWidget *parent = nullptr);

private:
    QWidget *makeScoreTools();

    AlphaTabController &m_controller;
};
