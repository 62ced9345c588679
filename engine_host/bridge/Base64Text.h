#pragma once

#include <QByteArrayView>
#include <QString>

namespace Base64Text {

/// Appends `bytes` to `text` in standard base64 (RFC 4648, section 4), padded, without line breaks. Written straight
/// into the text: for a file with a recording in it, each copy of the result holds up the window.
void append(QString &text, QByteArrayView bytes);

/// How many characters so many bytes become.
constexpr qsizetype length(qsizetype bytes) { return (bytes + 2) / 3 * 4; }

} // namespace Base64Text
