#pragma once

#include "app/trainer/TrainerSession.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;
class QSpinBox;

/// The speed trainer's settings, in a small window beside the score. The trainer works while it is open.
class TrainerPanel final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrainerPanel)

public:
    explicit TrainerPanel(AlphaTabController &controller, QWidget *parent = nullptr);
    ~TrainerPanel() override;

private:
    QWidget *makeSettings();
    void beginOrEnd();
    void refresh();
    TrainerSession::Plan plan() const;

    AlphaTabController &m_controller;
    TrainerSession m_session;
    QSpinBox *const m_from;
    QSpinBox *const m_to;
    QSpinBox *const m_step;
    QSpinBox *const m_passes;
    QCheckBox *const m_countIn;
    QCheckBox *const m_restart;
    QLabel *const m_state;
    QPushButton *const m_begin;
};
