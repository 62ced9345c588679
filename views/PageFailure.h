#pragma once

#include "design/Surface.h"

class AlphaTabController;
class Button;
class WrappedText;

/// What covers the score area while the page does not answer or has ended: what happened, and the way on.
class PageFailure final : public Surface {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageFailure)

public:
    explicit PageFailure(AlphaTabController &controller, QWidget *parent = nullptr);

private:
    void refresh();

    AlphaTabController &m_controller;
    WrappedText *m_title = nullptr;
    WrappedText *m_explanation = nullptr;
    Button *m_button = nullptr;
};
