#pragma once

#include "design/Theme.h"

#include <QString>
#include <QWidget>

/// An icon that does nothing but mean something.
class IconLabel final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(IconLabel)

public:
    IconLabel(QString identifier, int size, Theme::Role color, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const QString m_identifier;
    const Theme::Role m_color;
};
