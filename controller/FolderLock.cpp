#include "controller/FolderLock.h"

#include <QFile>

#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;

FolderLock::FolderLock(const QString &folder)
    : m_folder(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    constexpr auto lockTimeout = 200ms;
    const auto deadline = std::chrono::steady_clock::now() + lockTimeout;
    while (m_folder >= 0 && ::flock(m_folder, LOCK_EX | LOCK_NB) != 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(1ms);
}

FolderLock::~FolderLock()
{
    if (m_folder >= 0)
        ::close(m_folder);
}
