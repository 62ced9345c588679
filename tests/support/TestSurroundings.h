#pragma once

#include "controller/Surroundings.h"
#include "tests/support/RecordingEngine.h"
#include "tests/support/ScriptedDialogs.h"

#include <QList>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

/// Work that was put off, and for how long.
struct DelayedWork {
    std::chrono::milliseconds delay;
    std::function<void()> work;
};

/// A test's own world around a controller: a folder that goes away, a recording engine host, scripted panels, a log
/// that can be read, and a clock that stands still.
class TestSurroundings final {
public:
    TestSurroundings();

    /// A fresh set of surroundings over the same folder and records, so that a second controller is a second launch.
    Surroundings make();

    /// Does what was put off, as if its time had come.
    void letTimePass();

    QString path(const QString &name) const { return m_folder.filePath(name); }
    /// Makes a file in the folder and gives its address.
    QUrl file(const QString &name, const QByteArray &bytes = "x") const;
    /// A look at the settings file through a store of its own.
    std::unique_ptr<DefaultsStore> defaults();
    /// A look at the memory of scores.
    std::unique_ptr<ScoreMemory> scoreMemory();

    QProcessEnvironment environment;
    std::optional<QString> webFolder;
    /// Files are read at once, unless a test has them read in a thread.
    std::function<void(std::function<void()>)> inBackground = [](const std::function<void()> &work) { work(); };
    const std::shared_ptr<EngineRecord> engine = std::make_shared<EngineRecord>();
    const std::shared_ptr<DialogScript> dialogs = std::make_shared<DialogScript>();
    const std::shared_ptr<QStringList> log = std::make_shared<QStringList>();
    const std::shared_ptr<QStringList> windowTitles = std::make_shared<QStringList>();
    const std::shared_ptr<QList<DelayedWork>> delayed = std::make_shared<QList<DelayedWork>>();

private:
    const QTemporaryDir m_folder;
};
