#pragma once

#include <QObject>

class AlphaTabController;
class QWidget;

/// Makes the score larger and smaller with the wheel while Ctrl is held.
class WheelZoom final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WheelZoom)

public:
    /// @param window whose wheel events count; owns this
    WheelZoom(AlphaTabController &controller, QWidget &window);
    ~WheelZoom() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    AlphaTabController &m_controller;
    QWidget &m_window;
    /// Of a step that has begun, in eighths of a degree.
    int m_turned = 0;
};
