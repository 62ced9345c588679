#pragma once

#include <QDialog>

/// Which versions of what the program is made of, and under which licences.
class AboutPanel final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AboutPanel)

public:
    explicit AboutPanel(QWidget *parent);
    ~AboutPanel() override;
};
