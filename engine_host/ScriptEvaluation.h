#pragma once

#include <QString>
#include <QVariant>

#include <optional>

/// Evaluation that tells an exception from a result, which the web engine's own call does not.
namespace ScriptEvaluation {

/// `script` wrapped so that its value says whether it threw and what. A long text in it, such as a whole file in
/// base64, is handed over beside the code.
QString wrapped(const QString &script);

/// What the value of a wrapped script says: nothing on success, the error's text otherwise. A value that the wrapping
/// never produces means that the text did not even parse, or that there was no page to evaluate it.
std::optional<QString> errorOf(const QVariant &value);

} // namespace ScriptEvaluation
