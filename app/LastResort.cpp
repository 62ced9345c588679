#include "app/LastResort.h"

#include <csignal>
#include <sys/time.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t prepared = 0;
volatile std::sig_atomic_t armed = 0;

/// Not orderly, so no success.
constexpr int endedByForce = 1;

void end(int) { ::_exit(endedByForce); }

} // namespace

namespace LastResort {

void prepare()
{
    std::signal(SIGALRM, &end);
    prepared = 1;
}

void arm()
{
    if (!prepared || armed)
        return;
    armed = 1;
    itimerval timer{};
    timer.it_value.tv_sec = endingTimeoutMs / 1000;
    timer.it_value.tv_usec = endingTimeoutMs % 1000 * 1000L;
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

} // namespace LastResort
