#pragma once

#include <QString>

namespace SystemLog {

/// Writes `text` as exactly one line to standard error; line breaks inside it become blanks.
void write(const QString &text);

/// `text` as the one line that write() puts out, without the final line feed.
QString singleLine(const QString &text);

} // namespace SystemLog
