#include "desktop/Launch.h"
#include "desktop/LaunchSession.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QProcessEnvironment environment(const QString &name, const QString &value)
{
    QProcessEnvironment made;
    made.insert(name, value);
    return made;
}

QString keyOn(const QString &platform, const QString &variable, const QString &value, uid_t user = 1000)
{
    return LaunchSession::find(environment(variable, value), platform, user).key;
}

} // namespace

class TestLaunchSession final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneScreenIsOneSession()
    {
        const QString first = keyOn(u"xcb"_s, u"DISPLAY"_s, u":0"_s);
        QCOMPARE(keyOn(u"xcb"_s, u"DISPLAY"_s, u":0"_s), first);
        QCOMPARE(keyOn(u"xcb"_s, u"DISPLAY"_s, u":0.0"_s), first);
        QCOMPARE(keyOn(u"xcb"_s, u"DISPLAY"_s, u":0.1"_s), first);
    }

    void usersScreensAndWindowSystemsAreApart()
    {
        const QStringList keys{ keyOn(u"xcb"_s, u"DISPLAY"_s, u":0"_s), keyOn(u"xcb"_s, u"DISPLAY"_s, u":1"_s),
            keyOn(u"xcb"_s, u"DISPLAY"_s, u"localhost:10.0"_s), keyOn(u"xcb"_s, u"DISPLAY"_s, u":0"_s, 1001),
            keyOn(u"wayland"_s, u"WAYLAND_DISPLAY"_s, u"wayland-0"_s),
            keyOn(u"wayland"_s, u"WAYLAND_DISPLAY"_s, u"wayland-1"_s), keyOn(u"offscreen"_s, u"DISPLAY"_s, u":0"_s) };
        QCOMPARE(QSet<QString>(keys.begin(), keys.end()).size(), keys.size());
    }

    void theKeyCanBePartOfABusName()
    {
        const QString key = keyOn(u"xcb"_s, u"DISPLAY"_s, u"büro host:0"_s);
        QVERIFY2(QRegularExpression(u"^[A-Za-z_][A-Za-z0-9_]*$"_s).match(key).hasMatch(), qPrintable(key));
    }

    void onlyAFolderThatNobodyElseEntersHoldsSockets()
    {
        const auto folderOf = [](const QString &path, uid_t user) {
            return LaunchSession::find(environment(u"XDG_RUNTIME_DIR"_s, path), u"xcb"_s, user).socketFolder;
        };
        const QTemporaryDir folder;
        QCOMPARE(folderOf(folder.path(), ::getuid()), folder.path());
        QCOMPARE(folderOf(folder.path(), ::getuid() + 1), QString());
        QCOMPARE(folderOf(folder.filePath(u"missing"_s), ::getuid()), QString());
        QCOMPARE(folderOf({}, ::getuid()), QString());
        QVERIFY(QFile::setPermissions(
            folder.path(), QFile::permissions(folder.path()) | QFile::ReadOther | QFile::ExeOther));
        QCOMPARE(folderOf(folder.path(), ::getuid()), QString());
    }

    void theLaunchersTokenIsInTheEnvironment()
    {
        qunsetenv("XDG_ACTIVATION_TOKEN");
        qunsetenv("DESKTOP_STARTUP_ID");
        QCOMPARE(Launch::environmentToken(), QString());
        qputenv("DESKTOP_STARTUP_ID", "files_TIME5");
        QCOMPARE(Launch::environmentToken(), u"files_TIME5"_s);
        qputenv("XDG_ACTIVATION_TOKEN", "token");
        QCOMPARE(Launch::environmentToken(), u"token"_s);
        qunsetenv("XDG_ACTIVATION_TOKEN");
        qunsetenv("DESKTOP_STARTUP_ID");
    }
};

QTEST_GUILESS_MAIN(TestLaunchSession)
#include "test_launch_session.moc"
