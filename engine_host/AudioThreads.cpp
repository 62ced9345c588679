#include "engine_host/AudioThreads.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

/// What Chromium gives such threads where it may.
constexpr int niceness = -10;

/// The system keeps the first fifteen characters of a thread's name.
bool isAudio(const QByteArray &name)
{
    static const std::array<QByteArray, 3> names{ "Realtime AudioW", "AudioOutputDevi", "threaded-ml" };
    return std::find(names.begin(), names.end(), name) != names.end();
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

} // namespace

int AudioThreads::raise(qint64 process)
{
    int raised = 0;
    const QDir tasks(u"/proc/%1/task"_s.arg(process));
    for (const QString &thread : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString folder = tasks.filePath(thread);
        if (isAudio(read(folder + u"/comm"_s)) && setpriority(PRIO_PROCESS, id_t(thread.toUInt()), niceness) == 0)
            ++raised;
        for (const QByteArray &child : read(folder + u"/children"_s).split(' ')) {
            if (!child.isEmpty())
                raised += raise(child.toLongLong());
        }
    }
    return raised;
}
