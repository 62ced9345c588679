#pragma once

#include "app/AppDelegate.h"

#include <QMainWindow>
#include <QObject>

class AlphaTabController;
class QAction;
class QMenu;
struct Launch;

/// The application's one window with its menu commands.
class QuaverlyApp final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(QuaverlyApp)

public:
    explicit QuaverlyApp(AlphaTabController &controller);
    ~QuaverlyApp() override;

    AppDelegate &appDelegate() { return m_appDelegate; }
    /// Somebody has started the program once more: the window comes to the front, with the first of the files.
    void launchAgain(const Launch &launch);

    QMainWindow &window() { return m_window; }

private:
    void buildFileMenu();
    void buildViewMenu();
    void buildHelpMenu();
    void showWindow();

    AlphaTabController &m_controller;
    AppDelegate m_appDelegate;
    QMainWindow m_window;
};
