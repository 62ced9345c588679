#pragma once

#include <QString>

/// Keeps other programs from writing the files of a folder at the same time.
///
/// The system gives the lock back when a program ends in any way. One that stands still with the lock in its hands
/// shall not hold up the window: after a moment the writer goes on without.
class FolderLock final {
    Q_DISABLE_COPY_MOVE(FolderLock)

public:
    explicit FolderLock(const QString &folder);
    ~FolderLock();

private:
    const int m_folder;
};
