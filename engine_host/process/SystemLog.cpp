#include "engine_host/process/SystemLog.h"

#include <cstdio>

namespace SystemLog {

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
    const QByteArray line = singleLine(text).toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
    std::fflush(stderr);
}

} // namespace SystemLog
