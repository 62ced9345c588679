#pragma once

#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

/// A thread of that name that does nothing until the end.
class NamedThread final {
    Q_DISABLE_COPY_MOVE(NamedThread)

public:
    explicit NamedThread(const char *name)
        : m_thread([this, name] {
            pthread_setname_np(pthread_self(), name);
            std::unique_lock lock(m_mutex);
            m_id = int(syscall(SYS_gettid));
            m_changed.notify_all();
            m_changed.wait(lock, [this] { return m_done; });
        })
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_id != 0; });
    }

    ~NamedThread()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_done = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }

    int id() const { return m_id; }
    int niceness() const { return getpriority(PRIO_PROCESS, id_t(m_id)); }
    /// As the system calls it: SCHED_OTHER, or another with flags.
    int policy() const { return sched_getscheduler(m_id); }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_id = 0;
    bool m_done = false;
    std::thread m_thread;
};
