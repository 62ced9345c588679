#include "engine_host/process/AudioService.h"

#include <QDir>
#include <QFile>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool isAudioService(qint64 process)
{
    return read(u"/proc/%1/cmdline"_s.arg(process)).contains("--utility-sub-type=audio.mojom.AudioService");
}

} // namespace

namespace AudioService {

qint64 of(qint64 process)
{
    const QDir tasks(u"/proc/%1/task"_s.arg(process));
    for (const QString &thread : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        for (const QByteArray &number : read(tasks.filePath(thread) + u"/children"_s).simplified().split(' ')) {
            const qint64 child = number.toLongLong();
            if (child == 0)
                continue;
            if (isAudioService(child))
                return child;
            if (const qint64 found = of(child); found != 0)
                return found;
        }
    }
    return 0;
}

void end(qint64 process)
{
    if (const qint64 service = of(process); service > 0)
        ::kill(static_cast<pid_t>(service), SIGKILL);
}

} // namespace AudioService
