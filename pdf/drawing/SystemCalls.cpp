#include "pdf/drawing/SystemCalls.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

#if defined(__x86_64__)
constexpr unsigned machine = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr unsigned machine = AUDIT_ARCH_AARCH64;
#else
#error "The numbers of the kernel's requests are not known for this machine."
#endif

constexpr int plain[] = {
    // memory
    __NR_brk,
    __NR_munmap,
    __NR_mremap,
    __NR_madvise,
    // what is open
    __NR_read,
    __NR_readv,
    __NR_pread64,
    __NR_write,
    __NR_writev,
    __NR_lseek,
    __NR_close,
    __NR_fstat,
    __NR_getdents64,
    __NR_recvmsg,
    __NR_sendmsg,
    __NR_ppoll,
    __NR_eventfd2,
    // threads and time
    __NR_futex,
    __NR_set_robust_list,
    __NR_sched_yield,
    __NR_sched_getaffinity,
    __NR_gettid,
    __NR_getpid,
    __NR_clock_gettime,
    __NR_clock_getres,
    __NR_clock_nanosleep,
    __NR_nanosleep,
    __NR_gettimeofday,
    __NR_setitimer,
    __NR_rseq,
    // signals of its own, and the end
    __NR_rt_sigaction,
    __NR_rt_sigprocmask,
    __NR_rt_sigreturn,
    __NR_sigaltstack,
    __NR_restart_syscall,
    __NR_exit,
    __NR_exit_group,
    // what it is
    __NR_getrandom,
    __NR_uname,
    __NR_sysinfo,
    __NR_getuid,
    __NR_geteuid,
    __NR_getgid,
    __NR_getegid,
#ifdef __NR_poll
    __NR_poll,
#endif
#ifdef __NR_time
    __NR_time,
#endif
};

class Filter final {
public:
    Filter()
    {
        load(offsetof(seccomp_data, arch));
        add(BPF_JMP | BPF_JEQ | BPF_K, machine, 1, 0);
        answer(SECCOMP_RET_KILL_PROCESS);
        load(offsetof(seccomp_data, nr));
    }

    void allow(int number)
    {
        add(BPF_JMP | BPF_JEQ | BPF_K, unsigned(number), 0, 1);
        answer(SECCOMP_RET_ALLOW);
    }

    /// Where the argument has none of the bits in `forbidden` and all of those in `needed`.
    void allowFlags(int number, int argument, unsigned forbidden, unsigned needed = 0)
    {
        add(BPF_JMP | BPF_JEQ | BPF_K, unsigned(number), 0, 5);
        loadArgument(argument);
        add(BPF_ALU | BPF_AND | BPF_K, forbidden | needed);
        add(BPF_JMP | BPF_JEQ | BPF_K, needed, 0, 1);
        answer(SECCOMP_RET_ALLOW);
        answer(unknown);
    }

    void allowValue(int number, int argument, unsigned value) { allowFlags(number, argument, ~value, value); }

    bool install()
    {
        answer(unknown);
        const sock_fprog program{ static_cast<unsigned short>(m_program.size()), m_program.data() };
        return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
    }

private:
    static constexpr unsigned unknown = SECCOMP_RET_ERRNO | ENOSYS;

    void add(unsigned code, unsigned value, unsigned char ifTrue = 0, unsigned char ifFalse = 0)
    {
        m_program.push_back({ static_cast<unsigned short>(code), ifTrue, ifFalse, value });
    }
    void load(std::size_t offset) { add(BPF_LD | BPF_W | BPF_ABS, unsigned(offset)); }
    /// The lower half: all flags lie there on these machines.
    void loadArgument(int index) { load(offsetof(seccomp_data, args) + std::size_t(index) * sizeof(__u64)); }
    void answer(unsigned action) { add(BPF_RET | BPF_K, action); }

    std::vector<sock_filter> m_program;
};

} // namespace

namespace SystemCalls {

bool allowOnlyDrawing(bool openFiles)
{
    Filter filter;
    for (const int number : plain)
        filter.allow(number);
    // No memory that holds code.
    filter.allowFlags(__NR_mmap, 2, PROT_EXEC);
    filter.allowFlags(__NR_mprotect, 2, PROT_EXEC);
    // Threads, but no processes. Its successor keeps its flags in memory, which no filter sees.
    filter.allowFlags(__NR_clone, 0, 0, CLONE_THREAD | CLONE_VM | CLONE_SIGHAND);
    filter.allowValue(__NR_prctl, 0, PR_SET_NAME);
    filter.allowValue(__NR_fcntl, 1, F_GETFL);
    // For abort() and nothing else.
    filter.allowValue(__NR_tgkill, 0, unsigned(::getpid()));
    if (openFiles) {
        filter.allowFlags(__NR_openat, 2, ~unsigned(O_CLOEXEC | O_DIRECTORY | O_NONBLOCK | O_LARGEFILE));
        filter.allow(__NR_newfstatat);
    }
    return filter.install();
}

} // namespace SystemCalls
