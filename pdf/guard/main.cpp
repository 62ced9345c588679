// Runs Audiveris for the window and answers for everything that the engine starts.
//
// usage: quaverly-guard PROGRAM [ARGUMENT...]
//
// Standard output passes on what the engine and its processes write to theirs; the guard ends with the engine's status
// when that and all who still write have ended. The end of standard input, which comes with the end of the window
// however that ends, and a signal that asks to end, end them all. Where the engine cannot be started, standard error is
// the number of the system's error.
//
// Plain system calls: what this program does not link it need not load.

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// How long the engine may take to end by itself when it is asked to, and how often that is looked at, in milliseconds.
constexpr int graceMs = 300;
constexpr int lookMs = 5;
/// How long processes that were killed may take to go.
constexpr int killedMs = 1000;

constexpr int couldNotStart = 127;

void sleepMs(int milliseconds)
{
    timespec time{ 0, milliseconds * 1'000'000L };
    ::nanosleep(&time, nullptr);
}

sigset_t watched()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : { SIGCHLD, SIGTERM, SIGINT, SIGHUP })
        sigaddset(&set, number);
    return set;
}

/// The engine, and whether it has ended.
struct Engine {
    pid_t id = -1;
    bool ended = false;
    int status = 0;
};

/// Collects all processes that have ended. False when none is left.
bool collect(Engine &engine)
{
    int status = 0;
    pid_t id = 0;
    while ((id = ::waitpid(-1, &status, WNOHANG)) > 0) {
        if (id == engine.id) {
            engine.ended = true;
            engine.status = status;
        }
    }
    return id == 0;
}

/// Kills the processes of this one, which inherits those whose parents have ended.
void killChildren()
{
    const std::string list = "/proc/self/task/" + std::to_string(::getpid()) + "/children";
    std::FILE *file = std::fopen(list.c_str(), "re");
    if (!file)
        return;
    int id = 0;
    while (std::fscanf(file, "%d", &id) == 1)
        ::kill(id, SIGKILL);
    std::fclose(file);
}

void endAll(Engine &engine)
{
    ::kill(-engine.id, SIGTERM);
    for (int waited = 0; !engine.ended && waited < graceMs; waited += lookMs) {
        sleepMs(lookMs);
        collect(engine);
    }
    for (int waited = 0; waited < killedMs; waited += lookMs) {
        // Also when its leader has ended: the number belongs to the group for as long as one of its processes lives.
        ::kill(-engine.id, SIGKILL);
        killChildren();
        if (!collect(engine))
            return;
        sleepMs(lookMs);
    }
}

/// In the new process; comes back only as another program, or not at all.
[[noreturn]] void become(char *arguments[], int output, int failure)
{
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(output, STDERR_FILENO);
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::execv(arguments[0], arguments);
    const int reason = errno;
    [[maybe_unused]] const ssize_t written = ::write(failure, &reason, sizeof(reason));
    ::_exit(couldNotStart);
}

/// Passes on one piece of output; false at its end, or when nobody reads any more.
bool passOn(int from)
{
    std::array<char, 1 << 16> bytes;
    const ssize_t count = ::read(from, bytes.data(), bytes.size());
    if (count <= 0)
        return count < 0 && errno == EINTR;
    for (ssize_t done = 0; done < count;) {
        const ssize_t step = ::write(STDOUT_FILENO, bytes.data() + done, std::size_t(count - done));
        if (step < 0 && errno != EINTR)
            return false;
        done += step > 0 ? step : 0;
    }
    return true;
}

/// Until the engine and all who write have ended, or the window wants no more.
void watch(Engine &engine, int output, int signals)
{
    bool writes = true;
    while (!engine.ended || writes) {
        std::array<pollfd, 3> ready{ { { STDIN_FILENO, POLLIN, 0 }, { signals, POLLIN, 0 },
            { writes ? output : -1, POLLIN, 0 } } };
        if (::poll(ready.data(), ready.size(), -1) < 0)
            continue;
        if (ready[0].revents != 0)
            return;
        if (ready[1].revents != 0) {
            signalfd_siginfo info{};
            if (::read(signals, &info, sizeof(info)) == sizeof(info) && info.ssi_signo != SIGCHLD)
                return;
            collect(engine);
        }
        if (ready[2].revents != 0)
            writes = passOn(output);
    }
}

/// Ends as the engine did.
[[noreturn]] void endLike(int status)
{
    if (!WIFSIGNALED(status))
        ::_exit(WEXITSTATUS(status));
    const rlimit none{ 0, 0 };
    ::setrlimit(RLIMIT_CORE, &none);
    std::signal(WTERMSIG(status), SIG_DFL);
    sigset_t all;
    sigemptyset(&all);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
    std::raise(WTERMSIG(status));
    ::_exit(1);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 2) {
        std::fputs("quaverly-guard is a part of Quaverly, which starts it.\n", stderr);
        return 2;
    }
    // Ctrl+C in a terminal is the window's business.
    ::setsid();
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    std::signal(SIGPIPE, SIG_IGN);
    const sigset_t set = watched();
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
    const int signals = ::signalfd(-1, &set, SFD_CLOEXEC);
    std::array<int, 2> output{ -1, -1 };
    std::array<int, 2> failure{ -1, -1 };
    Engine engine;
    if (signals >= 0 && ::pipe2(output.data(), O_CLOEXEC) == 0 && ::pipe2(failure.data(), O_CLOEXEC) == 0)
        engine.id = ::fork();
    if (engine.id < 0) {
        std::fprintf(stderr, "%d", errno);
        return couldNotStart;
    }
    if (engine.id == 0)
        become(argv + 1, output[1], failure[1]);
    ::close(output[1]);
    ::close(failure[1]);
    ::setpgid(engine.id, engine.id);
    int reason = 0;
    if (::read(failure[0], &reason, sizeof(reason)) == sizeof(reason)) {
        std::fprintf(stderr, "%d", reason);
        return couldNotStart;
    }
    watch(engine, output[0], signals);
    endAll(engine);
    endLike(engine.status);
}
