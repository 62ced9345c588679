#include "pdf/process/SharedMemory.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>

SharedMemory::SharedMemory(FileDescriptor file, qint64 size)
    : m_file(std::move(file))
    , m_size(size)
{
}

std::optional<SharedMemory> SharedMemory::create(qint64 size)
{
    FileDescriptor file(::memfd_create("quaverly-page", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    constexpr int seals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;
    if (!file || ::ftruncate(file.number(), size) != 0 || ::fcntl(file.number(), F_ADD_SEALS, seals) != 0)
        return std::nullopt;
    return SharedMemory(std::move(file), size);
}

const uchar *SharedMemory::map() const
{
    void *memory = ::mmap(nullptr, std::size_t(m_size), PROT_READ, MAP_SHARED, m_file.number(), 0);
    return memory == MAP_FAILED ? nullptr : static_cast<const uchar *>(memory);
}

void SharedMemory::unmap(const uchar *memory, qint64 size) { ::munmap(const_cast<uchar *>(memory), std::size_t(size)); }

bool SharedMemory::read(uchar *to, qint64 count) const
{
    qint64 done = 0;
    while (done < count) {
        const ssize_t step = ::pread(m_file.number(), to + done, std::size_t(count - done), done);
        if (step < 0 && errno == EINTR)
            continue;
        if (step <= 0)
            return false;
        done += step;
    }
    return true;
}
