#include "app/CommandLine.h"

#include "translations/Translations.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QCoreApplication::translate("CommandLine", "Practise guitar from scores."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"file"_s,
        QCoreApplication::translate("CommandLine", "The Guitar Pro, MusicXML or PDF file to open."), u"[file]"_s);
}

} // namespace

std::optional<QString> CommandLine::immediateAnswer(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);

    QCommandLineParser parser;
    // "-reverse" and the others that Qt takes for itself later are no "-v" among other letters.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.parse(arguments);
    if (parser.isSet(u"version"_s))
        return u"quaverly "_s + QCoreApplication::applicationVersion() + u'\n';
    if (parser.isSet(u"help"_s)) {
        // The usage line is written from the application object's arguments.
        QCoreApplication application(argc, argv);
        Translations::install(application, Translations::languageFor(QLocale::system().uiLanguages()));
        QCommandLineParser speaking;
        describe(speaking);
        return speaking.helpText();
    }
    return std::nullopt;
}

CommandLine CommandLine::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments))
        return { {}, parser.errorText() };
    CommandLine result;
    const QStringList names = parser.positionalArguments();
    for (const QString &name : names) {
        const QUrl url(name);
        result.files << (url.isLocalFile() ? url : QUrl::fromLocalFile(QFileInfo(name).absoluteFilePath()));
    }
    return result;
}
