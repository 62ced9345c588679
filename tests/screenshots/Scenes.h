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
    enum class Page {
        Empty,
        Demo,
        PlayingDemo,
        /// The score of the scene's file.
        File,
        /// Over the demo score, the notice that follows from opening the scene's file.
        Notice,
    } page
        = Page::Empty;
    std::function<void(AlphaTabController &)> prepare;
    /// What the user does to the shown window.
    std::function<void(QWidget &)> act;
    /// The name of a score that is written for the tests.
    QString file = {};
    /// Whether the desktop asks for dark windows by its colour scheme alone, as GNOME does, and has no palette for
    /// them.
    bool schemeAlone = false;
};

QList<Scene> scenes();
