#pragma once

#include <csignal>
#include <sys/resource.h>

/// For as long as it lives, no file can be written beyond `bytes`, as on a full disk.
class FullDisk final {
public:
    explicit FullDisk(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit small{ bytes, m_before.rlim_max };
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before{};
};
