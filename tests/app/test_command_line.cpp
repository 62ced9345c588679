#include "app/CommandLine.h"

#include <QDir>
#include <QTest>

#include <array>

using namespace Qt::StringLiterals;

class TestCommandLine final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void filesBecomeAbsoluteAddresses()
    {
        const CommandLine line = CommandLine::parse(
            { u"quaverly"_s, u"a b#1.gp5"_s, u"/tmp/100%.pdf"_s, u"file:///tmp/Sch%C3%B6n.gp"_s, u"x:y.gp"_s });
        QVERIFY(line.error.isEmpty());
        const QDir here = QDir::current();
        QCOMPARE(line.files,
            (QList<QUrl>{ QUrl::fromLocalFile(here.absoluteFilePath(u"a b#1.gp5"_s)),
                QUrl::fromLocalFile(u"/tmp/100%.pdf"_s), QUrl::fromLocalFile(u"/tmp/Schön.gp"_s),
                QUrl::fromLocalFile(here.absoluteFilePath(u"x:y.gp"_s)) }));
    }

    void noFile() { QVERIFY(CommandLine::parse({ u"quaverly"_s }).files.isEmpty()); }

    void afterTwoDashesEverythingIsAFile()
    {
        const CommandLine line = CommandLine::parse({ u"quaverly"_s, u"--"_s, u"--version"_s });
        QCOMPARE(line.files.size(), 1);
        QCOMPARE(line.files.constFirst().fileName(), u"--version"_s);
    }

    void anUnknownOptionIsAnError()
    {
        QVERIFY(!CommandLine::parse({ u"quaverly"_s, u"--nonsense"_s }).error.isEmpty());
    }

    void whatQtTakesForItselfIsNotAnsweredHere()
    {
        for (const char *option : { "-reverse", "-stylesheet", "-style", "song.gp" }) {
            QByteArray program = "quaverly";
            QByteArray argument = option;
            std::array<char *, 3> arguments{ program.data(), argument.data(), nullptr };
            QVERIFY2(!CommandLine::immediateAnswer(2, arguments.data()), option);
        }
        for (const char *option : { "-v", "--version" }) {
            QByteArray program = "quaverly";
            QByteArray argument = option;
            std::array<char *, 3> arguments{ program.data(), argument.data(), nullptr };
            QVERIFY2(CommandLine::immediateAnswer(2, arguments.data()), option);
        }
    }
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "test_command_line.moc"
