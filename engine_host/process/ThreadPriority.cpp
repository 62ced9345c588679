#include "engine_host/process/ThreadPriority.h"

#include "engine_host/process/AudioThreads.h"

#include <algorithm>
#include <sched.h>
#include <sys/resource.h>

namespace {

bool becomesRealTime(const AudioThread &thread)
{
    const sched_param priority{ .sched_priority = ThreadPriority::realTimePriority };
    // What the thread starts is not to inherit its right.
    return ThreadPriority::boundRealTime(thread.process, ThreadPriority::longestRealTimeRun)
        && sched_setscheduler(pid_t(thread.thread), SCHED_RR | SCHED_RESET_ON_FORK, &priority) == 0;
}

bool becomesLessNice(const AudioThread &thread)
{
    return setpriority(PRIO_PROCESS, id_t(thread.thread), ThreadPriority::niceness) == 0;
}

} // namespace

bool ThreadPriority::boundRealTime(qint64 process, std::chrono::microseconds longestRun)
{
    rlimit bound{};
    if (prlimit(pid_t(process), RLIMIT_RTTIME, nullptr, &bound) != 0)
        return false;
    bound.rlim_max = std::min(bound.rlim_max, rlim_t(longestRun.count()));
    bound.rlim_cur = std::min(bound.rlim_cur, bound.rlim_max);
    return prlimit(pid_t(process), RLIMIT_RTTIME, &bound, nullptr) == 0;
}

bool ThreadPriority::raise(const AudioThread &thread)
{
    return (thread.work == AudioThread::Work::copies && becomesRealTime(thread)) || becomesLessNice(thread);
}
