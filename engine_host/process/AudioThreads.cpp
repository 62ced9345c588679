#include "engine_host/process/AudioThreads.h"

#include "engine_host/process/RunningProcess.h"

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

using Work = AudioThread::Work;

struct Name {
    QByteArrayView name;
    Work work;
};

/// The system keeps the first fifteen characters of a thread's name.
constexpr std::array names{
    Name{ "Realtime AudioW", Work::computes }, // the page's audio worklet
    Name{ "AudioOutputDevi", Work::copies }, // takes its samples to Chromium's audio process
    Name{ "threaded-ml", Work::copies }, // takes them from there to the sound system
};

std::optional<Work> workOf(QByteArrayView name)
{
    const auto known = std::find_if(names.begin(), names.end(), [name](const Name &one) { return one.name == name; });
    return known == names.end() ? std::nullopt : std::optional(known->work);
}

} // namespace

QList<AudioThread> AudioThreads::of(qint64 process)
{
    QList<AudioThread> found;
    for (const qint64 thread : RunningProcess::threads(process)) {
        if (const auto work = workOf(RunningProcess::read(process, u"task/%1/comm"_s.arg(thread)).trimmed()))
            found << AudioThread{ process, thread, *work };
    }
    for (const qint64 child : RunningProcess::children(process))
        found << of(child);
    return found;
}
