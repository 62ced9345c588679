#pragma once

#include "app/AppDelegate.h"
#include "app/PrintingAfterClose.h"

#include <QMainWindow>
#include <QObject>

class AlphaTabController;
class ContentView;
struct Launch;

/// The application's one window with its menu commands.
class QuaverlyApp final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(QuaverlyApp)

public:
    /// @param memoryFile where the window's place is kept (WindowMemory); empty for a window that remembers nothing
    explicit QuaverlyApp(AlphaTabController &controller, QString memoryFile = {});
    ~QuaverlyApp() override;

    AppDelegate &appDelegate() { return m_appDelegate; }
    /// Somebody has started the program once more: the window comes to the front, with the first of the files.
    void launchAgain(const Launch &launch);

    QMainWindow &window() { return m_window; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildFileMenu();
    void buildHelpMenu();
    void placeWindow();
    void showWindow();
    void rememberWindow();

    AlphaTabController &m_controller;
    AppDelegate m_appDelegate;
    const QString m_memoryFile;
    QMainWindow m_window;
    ContentView *m_content = nullptr;
    PrintingAfterClose m_printing;
};
