#pragma once

#include <QKeyEvent>
#include <QList>
#include <QObject>
#include <QWidget>

/// The keys that a widget is given.
class KeyRecorder final : public QObject {
public:
    explicit KeyRecorder(QWidget &watched) { watched.installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress)
            keys << static_cast<QKeyEvent *>(event)->key();
        return false;
    }

    QList<int> keys;
};
