#include "engine_host/process/AudioThreads.h"

#include <QDir>
#include <QFile>

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

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

} // namespace

QList<AudioThread> AudioThreads::of(qint64 process)
{
    QList<AudioThread> found;
    const QDir tasks(u"/proc/%1/task"_s.arg(process));
    for (const QString &thread : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString folder = tasks.filePath(thread);
        if (const auto work = workOf(read(folder + u"/comm"_s)))
            found << AudioThread{ process, thread.toLongLong(), *work };
        for (const QByteArray &child : read(folder + u"/children"_s).split(' ')) {
            if (!child.isEmpty())
                found << of(child.toLongLong());
        }
    }
    return found;
}
