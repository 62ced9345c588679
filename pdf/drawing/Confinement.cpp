#include "pdf/drawing/Confinement.h"

#include "pdf/drawing/SystemCalls.h"
#include "pdf/process/FileDescriptor.h"

#include <algorithm>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <linux/landlock.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>

namespace {

// The sanitizers need shadows of all memory, and files for their reports.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

void setLimit(__rlimit_resource kind, rlim_t most)
{
    const rlimit bound{ most, most };
    ::setrlimit(kind, &bound);
}

/// All that can be done to files, as far as this kernel knows it.
quint64 allRights(long kernel)
{
    // Each version added one to the highest bit that the first one had, and later headers than the oldest name them.
    constexpr quint64 first = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
    constexpr quint64 refer = LANDLOCK_ACCESS_FS_MAKE_SYM << 1;
    constexpr quint64 truncate = refer << 1;
    return first | (kernel >= 2 ? refer : 0) | (kernel >= 3 ? truncate : 0);
}

/// Leaves the fonts, for reading. False where the kernel cannot do so.
bool openOnlyFonts()
{
    const long kernel = ::syscall(__NR_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (kernel < 1)
        return false;
    landlock_ruleset_attr rules{};
    rules.handled_access_fs = allRights(kernel);
    const FileDescriptor ruleset(
        int(::syscall(__NR_landlock_create_ruleset, &rules, sizeof(rules.handled_access_fs), 0)));
    if (!ruleset)
        return false;
    for (const char *folder : { "/usr/share/fonts", "/usr/share/X11/fonts", "/usr/local/share/fonts" }) {
        const FileDescriptor opened(::open(folder, O_PATH | O_CLOEXEC));
        if (!opened)
            continue;
        landlock_path_beneath_attr rule{};
        rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
        rule.parent_fd = opened.number();
        ::syscall(__NR_landlock_add_rule, ruleset.number(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    }
    return ::syscall(__NR_landlock_restrict_self, ruleset.number(), 0) == 0;
}

} // namespace

namespace Confinement {

bool endWith(int lifeline)
{
    // A signal that ends a process by default, sent when the last writer is gone.
    ::fcntl(lifeline, F_SETOWN, ::getpid());
    ::fcntl(lifeline, F_SETFL, O_ASYNC | O_NONBLOCK);
    pollfd now{ lifeline, POLLIN, 0 };
    return ::poll(&now, 1, 0) == 0;
}

void keepOnly(int first, int second)
{
    const auto [low, high] = std::minmax(first, second);
    const auto closeRange = [](int from, unsigned to) {
        if (unsigned(from) <= to)
            ::syscall(__NR_close_range, unsigned(from), to, 0);
    };
    closeRange(STDERR_FILENO + 1, unsigned(low - 1));
    closeRange(low + 1, unsigned(high - 1));
    closeRange(high + 1, UINT_MAX);
}

void limit(qint64 memory)
{
    setLimit(RLIMIT_CORE, 0);
    setLimit(RLIMIT_FSIZE, 0);
    if (!sanitized)
        setLimit(RLIMIT_DATA, rlim_t(memory));
}

bool seal()
{
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    if (sanitized)
        return true;
    return SystemCalls::allowOnlyDrawing(openOnlyFonts());
}

} // namespace Confinement
