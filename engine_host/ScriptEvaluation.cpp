#include "engine_host/ScriptEvaluation.h"

#include <QStringBuilder>

using namespace Qt::StringLiterals;

namespace ScriptEvaluation {

QString wrapped(const QString &script)
{
    // The line feed keeps a trailing line comment of the script from swallowing the rest.
    return "(() => { try { "_L1 % script
        % "\n; return true; } catch (error) { return { error: String(error) }; } })()"_L1;
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
