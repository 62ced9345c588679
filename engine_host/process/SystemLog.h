#pragma once

#include <QString>
#include <QStringList>

namespace SystemLog {

/// Writes `text` as exactly one line to standard error; line breaks inside it become blanks.
void write(const QString &text);

/// The last lines that this process has written, at most fifty, the newest last.
QStringList lastLines();

/// `text` as the one line that write() puts out, without the final line feed.
QString singleLine(const QString &text);

} // namespace SystemLog
