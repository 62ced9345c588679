#pragma once

#include <QtGlobal>

namespace AudioThreads {

/// Lets the threads that sound depends on go before others: the web engine's audio thread and the sound system's
/// clients. They have some 20 ms for each turn, which drawing on all cores can make them miss. The system permits it to
/// root and to whom it grants a niceness of -10 ("nice" in limits.conf, which distributions set up for musicians);
/// without that nothing changes.
///
/// @param process whose threads, and those of its descendants, are looked through
/// @returns how many threads go first now
int raise(qint64 process);

} // namespace AudioThreads
