#pragma once

#include <QString>

#include <condition_variable>
#include <mutex>
#include <thread>

/// Sees to it that a file which is written often comes to rest on the disk, off the main thread: once about a second
/// after each burst of changes, and when this object ends.
class SettlingFile final {
    Q_DISABLE_COPY_MOVE(SettlingFile)

public:
    explicit SettlingFile(QString path);
    ~SettlingFile();

    /// The file was written. Never waits for the disk.
    void changed();

private:
    void work();

    const QString m_path;
    std::mutex m_mutex;
    std::condition_variable m_woken;
    bool m_changed = false;
    bool m_ending = false;
    std::thread m_worker;
};
