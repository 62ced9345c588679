#pragma once

#include <QList>

/// A thread that sound depends on. It has some 20 ms for each turn, which drawing on all cores, or another program, can
/// make it miss.
struct AudioThread {
    enum class Work {
        computes, ///< runs the page's own code, which may take its time
        copies, ///< hands samples on, and sleeps again in a millisecond
    };

    qint64 process = 0;
    qint64 thread = 0;
    Work work = Work::computes;
};

namespace AudioThreads {

/// Chromium's audio threads and those of the sound system's clients.
///
/// @param process whose threads, and those of its descendants, are looked through
QList<AudioThread> of(qint64 process);

} // namespace AudioThreads
