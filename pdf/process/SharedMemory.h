#pragma once

#include "pdf/process/FileDescriptor.h"

#include <QtGlobal>

#include <optional>

/// Memory that can be handed to another process as a file. Its size is sealed, so that no process that has it can take
/// it away under another one.
class SharedMemory final {
public:
    /// Zeroed; nothing when the system has none. `size` is at least 1.
    static std::optional<SharedMemory> create(qint64 size);

    int descriptor() const { return m_file.number(); }
    qint64 size() const { return m_size; }

    /// All of it, for reading; null when there is no room. Give it back with unmap().
    const uchar *map() const;
    static void unmap(const uchar *memory, qint64 size);
    /// Copies its first `count` bytes.
    bool read(uchar *to, qint64 count) const;

private:
    SharedMemory(FileDescriptor file, qint64 size);

    FileDescriptor m_file;
    qint64 m_size;
};
