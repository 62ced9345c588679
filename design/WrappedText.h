#pragma once

#include "design/Theme.h"

#include <QLabel>

/// Centred text that breaks into more lines where room is scarce.
class WrappedText final : public QLabel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WrappedText)

public:
    WrappedText(const QString &text, Theme::Type type, Theme::Role color, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void recolor();

    const Theme::Role m_color;
};
