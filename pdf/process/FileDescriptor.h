#pragma once

#include <unistd.h>
#include <utility>

/// An open file of the system's, closed with this object.
class FileDescriptor final {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number)
        : m_number(number)
    {
    }
    FileDescriptor(FileDescriptor &&other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }

    explicit operator bool() const { return m_number >= 0; }
    int number() const { return m_number; }
    void close() { FileDescriptor ended(std::exchange(m_number, -1)); }

private:
    int m_number = -1;
};
