#pragma once

#include "controller/DefaultsStore.h"
#include "controller/Dialogs.h"
#include "controller/ScoreMemory.h"
#include "engine_host/EngineHost.h"

#include <QProcessEnvironment>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class QObject;
class ScriptHandler;

/// Everything outside itself that the controller touches; system() gives the real things, a test its own.
struct Surroundings {
    using MakeEngine
        = std::function<std::unique_ptr<EngineHost>(ScriptHandler &, const std::optional<QString> &webFolder)>;

    std::unique_ptr<DefaultsStore> defaults;
    std::unique_ptr<ScoreMemory> scoreMemory;
    std::unique_ptr<Dialogs> dialogs;
    QProcessEnvironment environment;
    /// Where the marker files are looked for and the diagnostic files go by default.
    QString temporaryFolder;
    /// Where the Debian package of Audiveris has its executable.
    QString packagedAudiveris;
    /// The folder that holds the page, if there is one.
    std::optional<QString> webFolder;
    MakeEngine makeEngine;
    /// Writes one line to the system log.
    std::function<void(const QString &line)> log;
    /// Runs `work` on the main thread after `delay`, unless `context` is gone by then.
    std::function<void(std::chrono::milliseconds delay, QObject *context, std::function<void()> work)> after;
    /// Runs `work` in another thread. The program may end before it is done.
    std::function<void(std::function<void()> work)> inBackground;
    /// Sets the title of the main window now; nothing happens where there is none.
    std::function<void(const QString &title)> setMainWindowTitle;

    static Surroundings system();
};
