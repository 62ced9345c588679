#include "controller/WindowTitle.h"

using namespace Qt::StringLiterals;

namespace {

constexpr char16_t leftToRightEmbedding = 0x202a;
constexpr char16_t rightToLeftEmbedding = 0x202b;
constexpr char16_t popFormatting = 0x202c;
constexpr char16_t leftToRightOverride = 0x202d;
constexpr char16_t rightToLeftOverride = 0x202e;
constexpr char16_t leftToRightIsolate = 0x2066;
constexpr char16_t firstStrongIsolate = 0x2068;
constexpr char16_t popIsolate = 0x2069;

} // namespace

namespace WindowTitle {

QString closed(const QString &text)
{
    // What ends everything that is open, the innermost last.
    QString ends;
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (code == leftToRightEmbedding || code == rightToLeftEmbedding || code == leftToRightOverride
            || code == rightToLeftOverride)
            ends += QChar(popFormatting);
        else if (code >= leftToRightIsolate && code <= firstStrongIsolate)
            ends += QChar(popIsolate);
        else if (code == popFormatting && ends.endsWith(QChar(popFormatting)))
            ends.chop(1);
        else if (code == popIsolate && ends.contains(QChar(popIsolate)))
            ends.truncate(ends.lastIndexOf(QChar(popIsolate)));
    }
    QString result = text;
    for (qsizetype i = ends.size(); i > 0; --i)
        result += ends.at(i - 1);
    return result;
}

QString forWidget(const QString &title)
{
    QString result = title;
    // Doubled, it stands for itself.
    return result.replace("[*]"_L1, "[*][*]"_L1);
}

} // namespace WindowTitle
