#include "controller/KeyWindow.h"

#include <QApplication>
#include <QWidget>

QWidget *KeyWindow::find()
{
    if (QWidget *active = QApplication::activeWindow())
        return active;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && window->windowType() == Qt::Window)
            return window;
    }
    return nullptr;
}
