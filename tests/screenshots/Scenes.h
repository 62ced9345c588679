#pragma once

#include <QSize>
#include <QString>

#include <functional>

class AlphaTabController;
class QWidget;

/// One picture of the window: a name, a size, a look, and what happened before.
struct Scene {
    QString name;
    QSize size;
    bool dark = false;
    /// What the page is doing.
    enum class Page { Empty, Demo, PlayingDemo } page = Page::Empty;
    std::function<void(AlphaTabController &)> prepare;
    /// What the user does to the shown window.
    std::function<void(QWidget &)> act;
};

QList<Scene> scenes();
