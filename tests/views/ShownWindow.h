#pragma once

#include "controller/AlphaTabController.h"
#include "tests/support/TestSurroundings.h"

#include <QMainWindow>
#include <QStringList>
#include <QWidget>

class ContentView;

/// The whole window on a screen of its own, over a recording engine host.
class ShownWindow final {
public:
    /// @param prepare what there is before the window comes up
    explicit ShownWindow(const std::function<void(ShownWindow &)> &prepare = {}, QSize size = QSize(1200, 800));
    ~ShownWindow();

    /// The score's message with tracks 0, 1, ... of these names.
    void score(const QString &title, const QStringList &tracks, bool backingTrack = false);
    void position(double currentTime, double endTime);
    void playerReady();
    /// Opens a PDF with this content, else one of a single page.
    void openPDF(const QByteArray &file = {});

    /// The shown control of that accessible name; null when there is none.
    QWidget *control(const QString &name) const;
    template <typename T> T *control(const QString &name) const { return qobject_cast<T *>(control(name)); }
    void click(const QString &name);
    /// The first shown label with exactly that text; null when there is none.
    QWidget *label(const QString &text) const;

    /// The scripts since the last call of this.
    QStringList sent() { return world.engine->take(); }

    TestSurroundings world;
    AlphaTabController controller;
    QMainWindow window;
    ContentView *content;
};

/// What a screen reader calls it.
QString accessibleName(QWidget *widget);
