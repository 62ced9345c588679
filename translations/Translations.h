#pragma once

#include <QString>
#include <QStringList>

class QCoreApplication;

/// The program's texts in the user's language. English is what the sources hold.
namespace Translations {

/// "de", "fr" and so on: what the program speaks besides English.
QStringList languages();

/// The first of the user's languages that the program speaks; empty for English, and where it speaks none.
/// @param preferred such as "de-AT", the best first
QString languageFor(const QStringList &preferred);

/// Has `application` speak `language`, with what Qt itself says.
void install(QCoreApplication &application, const QString &language);

} // namespace Translations
