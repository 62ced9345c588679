#pragma once

#include "design/Theme.h"

#include <QWidget>

/// A plain area in one colour of the theme.
class Surface : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Surface)

public:
    explicit Surface(Theme::Role fill, QWidget *parent = nullptr);
    ~Surface() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const Theme::Role m_fill;
};
