#include "engine_host/process/LaunchCode.h"

#include <QByteArray>
#include <QFile>

#include <link.h>
#include <span>
#include <sys/mman.h>
#include <unistd.h>

namespace LaunchCode {

namespace {

using Segments = std::span<const ElfW(Phdr)>;

bool isTraced()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    return !status.readAll().contains("\nTracerPid:\t0\n");
}

/// Whether the linker has written into the library's code, which the file then does not have.
bool isRelocatedInCode(const dl_phdr_info &library, Segments segments)
{
    for (const ElfW(Phdr) & segment : segments) {
        if (segment.p_type != PT_DYNAMIC)
            continue;
        // The linker's own address of the section, as the loader itself takes it.
        const auto *entry
            = reinterpret_cast<const ElfW(Dyn) *>(library.dlpi_addr + segment.p_vaddr); // NOLINT(*-int-to-ptr)
        for (; entry->d_tag != DT_NULL; ++entry) {
            if (entry->d_tag == DT_TEXTREL || (entry->d_tag == DT_FLAGS && (entry->d_un.d_val & DF_TEXTREL)))
                return true;
        }
    }
    return false;
}

/// The loader unloads nothing while it calls this, so no other memory can have taken the library's place.
int giveBackLibrary(dl_phdr_info *library, size_t, void *)
{
    const Segments segments(library->dlpi_phdr, library->dlpi_phnum);
    if (isRelocatedInCode(*library, segments))
        return 0;
    const auto pageSize = static_cast<ElfW(Addr)>(::sysconf(_SC_PAGESIZE));
    for (const ElfW(Phdr) & segment : segments) {
        // What the process may write it may have written.
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W))
            continue;
        const ElfW(Addr) begin = library->dlpi_addr + segment.p_vaddr;
        const ElfW(Addr) first = (begin + pageSize - 1) / pageSize * pageSize;
        const ElfW(Addr) end = (begin + segment.p_memsz) / pageSize * pageSize;
        if (first < end)
            ::madvise(reinterpret_cast<void *>(first), end - first, MADV_DONTNEED); // NOLINT(*-int-to-ptr)
    }
    return 0;
}

} // namespace

void giveBack()
{
    if (!isTraced())
        ::dl_iterate_phdr(&giveBackLibrary, nullptr);
}

} // namespace LaunchCode
