#include "controller/SettlingFile.h"

#include <QFile>

#include <chrono>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// How long a burst of changes may go on before the disk is asked to keep up.
constexpr auto burst = 1s;

void sync(const QString &path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return;
    ::fsync(file);
    ::close(file);
}

} // namespace

SettlingFile::SettlingFile(QString path)
    : m_path(std::move(path))
{
}

SettlingFile::~SettlingFile()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_woken.notify_one();
    if (m_worker.joinable())
        m_worker.join();
}

void SettlingFile::changed()
{
    {
        const std::lock_guard lock(m_mutex);
        m_changed = true;
    }
    // Settings that nobody changes need no thread.
    if (!m_worker.joinable())
        m_worker = std::thread([this] { work(); });
    m_woken.notify_one();
}

void SettlingFile::work()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_woken.wait(lock, [this] { return m_changed || m_ending; });
        m_woken.wait_for(lock, burst, [this] { return m_ending; });
        if (std::exchange(m_changed, false)) {
            lock.unlock();
            sync(m_path);
            lock.lock();
        }
        if (m_ending)
            return;
    }
}
