#pragma once

#include <QString>
#include <QVariant>

#include <optional>

/// Evaluation that tells an exception from a result, which Chromium's own call does not.
namespace ScriptEvaluation {

/// `script` wrapped so that its value says whether it threw and what. A long text in it, such as a whole file in
/// base64, is handed over beside the code.
QString wrapped(const QString &script);

/// What the value of a wrapped script says: nothing on success, the error's text otherwise. A value that the wrapping
/// never produces means that the text did not even parse, or that there was no page to evaluate it.
/// @param syntaxError what syntaxErrorOf() gave for this script, if anything
std::optional<QString> errorOf(const QVariant &value, const std::optional<QString> &syntaxError = std::nullopt);

/// The text of a wrapped script's syntax error. It stands nowhere but in the page's console, where it comes before the
/// script's value does.
/// @param sourceId where the console line comes from
/// @return nothing for every other console line
std::optional<QString> syntaxErrorOf(const QString &consoleLine, const QString &sourceId);

} // namespace ScriptEvaluation
