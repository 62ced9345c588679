#include "engine_host/ScriptEvaluation.h"

#include <QStringBuilder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ScriptEvaluation {

namespace {

/// Texts between quotes from this length on, in characters, are handed over beside the code.
constexpr qsizetype longText = 1 << 20;

constexpr auto opening = "function(){/*"_L1;
constexpr auto closing = "*/}"_L1;

// The line feed keeps a trailing line comment of the script from swallowing the rest.
constexpr auto head = "try { "_L1;
constexpr auto tail = "\n; true; } catch (error) { ({ error: String(error) }); }"_L1;

/// Whether the characters mean themselves between quotes and in a comment alike.
bool isPlain(QStringView text)
{
    return std::none_of(
        text.utf16(), text.utf16() + text.size(), [](char16_t c) { return c < u'+' || c > u'z' || c == u'\\'; });
}

} // namespace

QString wrapped(const QString &script)
{
    const qsizetype first = script.indexOf(u'\'');
    const qsizetype last = first < 0 ? -1 : script.lastIndexOf(u'\'');
    const QStringView text = QStringView(script).mid(first + 1, std::max<qsizetype>(last - first - 1, 0));
    if (text.size() < longText || !isPlain(text))
        return head % script % tail;
    // JavaScript engines build a text between quotes character by character in a buffer that V8 lengthens by one
    // megabyte at a time, copying it each time: 1.7 seconds for a file of 63 MB. A comment is passed over, and a
    // function knows its own source without a copy.
    return head % QStringView(script).left(first) % u'(' % opening % text % closing % ").toString().slice("_L1
        % QString::number(opening.size()) % ", -"_L1 % QString::number(closing.size()) % u')'
        % QStringView(script).mid(last + 1) % tail;
}

std::optional<QString> errorOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return std::nullopt;
    if (value.typeId() == QMetaType::QVariantMap)
        return value.toMap().value(u"error"_s).toString();
    return u"the script could not be evaluated (a syntax error, or no page)"_s;
}

} // namespace ScriptEvaluation
