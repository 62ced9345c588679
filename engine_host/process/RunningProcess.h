#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// What Linux tells of a running process, by its number. Of one that has ended it tells nothing.
namespace RunningProcess {

/// @param file of the process in /proc, such as "cmdline"
QByteArray read(qint64 process, const QString &file);
/// The numbers of its threads.
QList<qint64> threads(qint64 process);
/// The numbers of the processes that it has started and that still run.
QList<qint64> children(qint64 process);

} // namespace RunningProcess
