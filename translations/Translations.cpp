#include "translations/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace Translations {

QStringList languages() { return QStringLiteral(QUAVERLY_LANGUAGES).split(u' '); }

QString languageFor(const QStringList &preferred)
{
    for (const QString &name : preferred) {
        QString language = name.section(u'-', 0, 0).section(u'_', 0, 0).toLower();
        if (language == "en"_L1 || language == "c"_L1)
            return {};
        if (languages().contains(language))
            return language;
    }
    return {};
}

void install(QCoreApplication &application, const QString &language)
{
    if (language.isEmpty())
        return;
    const auto add = [&](const QString &name, const QString &folder) {
        auto *translator = new QTranslator(&application);
        if (translator->load(name + u'_' + language, folder))
            QCoreApplication::installTranslator(translator);
        else
            delete translator;
    };
    add(u"qtbase"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    add(u"quaverly"_s, u":/translations"_s);
}

} // namespace Translations
