#include "engine_host/process/AudioService.h"

#include "engine_host/process/RunningProcess.h"

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

bool isAudioService(qint64 process)
{
    return RunningProcess::read(process, u"cmdline"_s).contains("--utility-sub-type=audio.mojom.AudioService");
}

} // namespace

namespace AudioService {

qint64 of(qint64 process)
{
    for (const qint64 child : RunningProcess::children(process)) {
        if (isAudioService(child))
            return child;
        if (const qint64 found = of(child); found != 0)
            return found;
    }
    return 0;
}

void end(qint64 process)
{
    if (const qint64 service = of(process); service > 0)
        ::kill(static_cast<pid_t>(service), SIGKILL);
}

} // namespace AudioService
