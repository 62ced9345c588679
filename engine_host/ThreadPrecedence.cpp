#include "engine_host/ThreadPrecedence.h"

#include "engine_host/AudioThreads.h"

#include <algorithm>
#include <sched.h>
#include <sys/resource.h>

namespace {

bool becomesRealTime(const AudioThread &thread)
{
    const sched_param priority{ .sched_priority = ThreadPrecedence::realTimePriority };
    // What the thread starts is not to inherit its right.
    return ThreadPrecedence::boundRealTime(thread.process, ThreadPrecedence::longestRealTimeRun)
        && sched_setscheduler(pid_t(thread.thread), SCHED_RR | SCHED_RESET_ON_FORK, &priority) == 0;
}

bool becomesLessNice(const AudioThread &thread)
{
    return setpriority(PRIO_PROCESS, id_t(thread.thread), ThreadPrecedence::niceness) == 0;
}

} // namespace

bool ThreadPrecedence::boundRealTime(qint64 process, std::chrono::microseconds longestRun)
{
    rlimit bound{};
    if (prlimit(pid_t(process), RLIMIT_RTTIME, nullptr, &bound) != 0)
        return false;
    bound.rlim_max = std::min(bound.rlim_max, rlim_t(longestRun.count()));
    bound.rlim_cur = std::min(bound.rlim_cur, bound.rlim_max);
    return prlimit(pid_t(process), RLIMIT_RTTIME, &bound, nullptr) == 0;
}

bool ThreadPrecedence::give(const AudioThread &thread)
{
    return (thread.work == AudioThread::Work::copies && becomesRealTime(thread)) || becomesLessNice(thread);
}
