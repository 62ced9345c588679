#include "engine_host/process/RunningProcess.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

QString folder(qint64 process) { return u"/proc/%1/"_s.arg(process); }

} // namespace

namespace RunningProcess {

QByteArray read(qint64 process, const QString &file)
{
    QFile wanted(folder(process) + file);
    return wanted.open(QIODevice::ReadOnly) ? wanted.readAll() : QByteArray();
}

QList<qint64> threads(qint64 process)
{
    QList<qint64> numbers;
    for (const QString &name : QDir(folder(process) + u"task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        numbers << name.toLongLong();
    return numbers;
}

QList<qint64> children(qint64 process)
{
    QList<qint64> numbers;
    for (const qint64 thread : threads(process)) {
        for (const QByteArray &number : read(process, u"task/%1/children"_s.arg(thread)).simplified().split(' ')) {
            if (!number.isEmpty())
                numbers << number.toLongLong();
        }
    }
    return numbers;
}

} // namespace RunningProcess
