// QProcess begins a child that shares this process's memory until it runs another program. ThreadSanitizer takes every
// child for a copy and tells it to watch nothing any more, which holds for the thread here, too. So it gets a copy.

#include <cstdarg>
#include <dlfcn.h>
#include <sched.h>
#include <sys/types.h>

extern "C" int clone(int (*run)(void *), void *stack, int flags, void *argument, ...) noexcept
{
    using Clone = int (*)(int (*)(void *), void *, int, void *, ...);
    static const auto next = reinterpret_cast<Clone>(dlsym(RTLD_NEXT, "clone"));
    std::va_list more;
    va_start(more, argument);
    auto *const parentId = va_arg(more, pid_t *);
    void *const storage = va_arg(more, void *);
    auto *const childId = va_arg(more, pid_t *);
    va_end(more);
    return next(run, stack, flags & ~CLONE_VM, argument, parentId, storage, childId);
}
