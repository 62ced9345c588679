#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

class AlphaTabController;

/// What the application does outside its window: launch, files handed in by the system, the space bar, window shots.
class AppDelegate final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AppDelegate)

public:
    /// @param temporaryFolder where the marker for window shots is looked for and the pictures go
    explicit AppDelegate(AlphaTabController &controller, QString temporaryFolder = QStringLiteral("/tmp"));
    ~AppDelegate() override;

    /// Brings the window to the front, starts window shots if their marker is there, installs the space-bar monitor.
    void applicationDidFinishLaunching();
    /// Opens the first of the files; the others are ignored on purpose.
    void open(const QList<QUrl> &urls);

private:
    void startWindowShots();
    void takeWindowShots();

    AlphaTabController &m_controller;
    const QString m_temporaryFolder;
    std::unique_ptr<QObject> m_spaceMonitor;
};
