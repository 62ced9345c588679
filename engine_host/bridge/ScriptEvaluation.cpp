#include "engine_host/bridge/ScriptEvaluation.h"

#include <QStringBuilder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ScriptEvaluation {

namespace {

/// Texts between quotes from this length on, in characters, are handed over beside the code.
constexpr qsizetype longText = 1 << 20;

constexpr auto opening = "function(){/*"_L1;
constexpr auto closing = "*/}"_L1;

/// What the console calls wrapped scripts; it has to stand before anything that may not parse.
constexpr auto source = "qv-call"_L1;

// The line feed keeps a trailing line comment of the script from swallowing the rest.
constexpr auto head = "//# sourceURL=qv-call\ntry { "_L1;
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

std::optional<QString> errorOf(const QVariant &value, const std::optional<QString> &syntaxError)
{
    if (value.typeId() == QMetaType::Bool)
        return std::nullopt;
    if (value.typeId() == QMetaType::QVariantMap)
        return value.toMap().value(u"error"_s).toString();
    return syntaxError.value_or(u"there is no page to evaluate the script"_s);
}

std::optional<QString> syntaxErrorOf(const QString &consoleLine, const QString &sourceId)
{
    constexpr auto uncaught = "Uncaught "_L1;
    const QString error = consoleLine.startsWith(uncaught) ? consoleLine.mid(uncaught.size()) : consoleLine;
    return sourceId == source && error.startsWith("SyntaxError: "_L1) ? std::optional(error) : std::nullopt;
}

} // namespace ScriptEvaluation
