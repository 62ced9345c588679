#pragma once

#include <QtGlobal>

#include <chrono>

struct AudioThread;

/// Raises a thread's priority, as far as the system permits it to this program itself: to root, and to users for whom
/// limits.conf grants a real-time priority or a niceness, as distributions set it up for musicians.
namespace ThreadPriority {

/// The lowest that goes before all usual threads leaves the system's own their places above; 1 to 99.
constexpr int realTimePriority = 5;
/// What Chromium gives audio threads where it may; -20 (first) to 19.
constexpr int niceness = -10;
/// A real-time thread that runs this long without a pause has run away. The system ends its process.
constexpr std::chrono::microseconds longestRealTimeRun{ 200'000 };

/// Copying threads become real-time threads, or where that is not permitted get the niceness, which all others get.
///
/// @returns whether its priority is raised now
bool raise(const AudioThread &thread);

/// Bounds how long real-time threads of a process may run without a pause; a lower bound that it has stays.
///
/// @returns whether it is bounded now
bool boundRealTime(qint64 process, std::chrono::microseconds longestRun);

} // namespace ThreadPriority
