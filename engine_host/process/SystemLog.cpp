#include "engine_host/process/SystemLog.h"

#include <QMutex>

#include <cstdio>

namespace {

constexpr qsizetype keptLines = 50;

/// Lines come from any thread.
struct Kept {
    QMutex mutex;
    QStringList lines;
};

Kept &kept()
{
    static Kept instance;
    return instance;
}

} // namespace

namespace SystemLog {

QStringList lastLines()
{
    const QMutexLocker lock(&kept().mutex);
    return kept().lines;
}

QString singleLine(const QString &text)
{
    QString line = text;
    for (QChar &c : line) {
        if (c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = u' ';
    }
    return line;
}

void write(const QString &text)
{
    const QString single = singleLine(text);
    {
        const QMutexLocker lock(&kept().mutex);
        if (kept().lines.size() == keptLines)
            kept().lines.removeFirst();
        kept().lines << single;
    }
    const QByteArray line = single.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
    std::fflush(stderr);
}

} // namespace SystemLog
