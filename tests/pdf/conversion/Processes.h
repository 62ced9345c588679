#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

/// Whether any of the processes, given by their numbers and separated by blanks, still runs.
inline bool anyRuns(const QString &numbers)
{
    const QStringList list = numbers.split(u' ');
    for (const QString &number : list) {
        QFile status(QStringLiteral("/proc/%1/stat").arg(number));
        // A process that has ended and waits to be collected by whoever inherited it does not run.
        if (status.open(QIODevice::ReadOnly) && !status.readAll().contains(") Z "))
            return true;
    }
    return false;
}
