#include "desktop/LaunchSession.h"
#include "desktop/OneWindow.h"
#include "tests/engine_host/process/PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <chrono>
#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QUrl song = QUrl::fromLocalFile(u"/music/Für Elise 100%.gp"_s);
const QUrl other = QUrl::fromLocalFile(u"/music/b.pdf"_s);

/// Launches again in a thread, as another program would, while this one goes on.
bool goesElsewhere(OneWindow &second, const Launch &launch)
{
    bool result = false;
    const std::unique_ptr<QThread> program(QThread::create([&] { result = second.goesElsewhere(launch); }));
    program->start();
    while (!program->wait(0))
        QTest::qWait(1);
    return result;
}

/// As a program does that is killed.
void leaveSocketBehind(const QString &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, QFile::encodeName(path).constData(), sizeof(address.sun_path));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QVERIFY(::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0);
    ::close(socket);
    QVERIFY(QFileInfo::exists(path));
}

/// What a program has been asked for.
struct Received {
    explicit Received(const OneWindow &window)
    {
        QObject::connect(&window, &OneWindow::launched, &context, [this](const Launch &one) { launches << one; });
    }

    QObject context;
    QList<Launch> launches;
};

} // namespace

/// Each test runs over the bus and over the socket.
class TestOneWindow final : public QObject {
    Q_OBJECT

    PrivateBus m_bus;
    std::unique_ptr<QTemporaryDir> m_folder;
    QStringList m_connections;

    QDBusConnection connection()
    {
        m_connections << u"program %1"_s.arg(m_connections.size());
        return QDBusConnection::connectToBus(m_bus.address(), m_connections.constLast());
    }

    static QDBusConnection noBus() { return QDBusConnection(u"nowhere"_s); }

    bool m_overBus = false;

    /// A program of its own, with or without a bus as the test's row says.
    std::unique_ptr<OneWindow> program(
        const QString &sessionKey = u"session_1"_s, std::chrono::milliseconds answerTimeout = 5s)
    {
        return std::make_unique<OneWindow>(
            m_overBus ? connection() : noBus(), LaunchSession{ sessionKey, m_folder->path() }, answerTimeout);
    }

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<bool>("overBus");
        QTest::newRow("bus") << true;
        QTest::newRow("socket") << false;
    }

    void initTestCase() { QVERIFY(!m_bus.address().isEmpty()); }

    void init()
    {
        QFETCH_GLOBAL(bool, overBus);
        m_overBus = overBus;
        m_folder = std::make_unique<QTemporaryDir>();
    }

    void cleanup()
    {
        for (const QString &name : std::exchange(m_connections, {}))
            QDBusConnection::disconnectFromBus(name);
    }

    void theSecondLaunchGoesToTheFirst()
    {
        const auto first = program();
        const Received received(*first);
        QVERIFY(!first->goesElsewhere({ { song }, {} }));
        const auto second = program();
        QVERIFY(goesElsewhere(*second, { { song, other }, u"launcher_TIME17"_s }));
        QTRY_COMPARE(received.launches.size(), 1);
        QCOMPARE(received.launches[0].files, (QList<QUrl>{ song, other }));
        QCOMPARE(received.launches[0].activationToken, u"launcher_TIME17"_s);
        const auto third = program();
        QVERIFY(goesElsewhere(*third, {}));
        QTRY_COMPARE(received.launches.size(), 2);
        QVERIFY(received.launches[1].files.isEmpty());
        QVERIFY(received.launches[1].activationToken.isEmpty());
    }

    void sessionsDoNotMeet()
    {
        const auto first = program(u"session_1"_s);
        QVERIFY(!first->goesElsewhere({}));
        const auto second = program(u"session_2"_s);
        const Received received(*first);
        QVERIFY(!second->goesElsewhere({ { song }, {} }));
        const Received bySecond(*second);
        const auto again = program(u"session_2"_s);
        QVERIFY(goesElsewhere(*again, { { song }, {} }));
        QTRY_COMPARE(bySecond.launches.size(), 1);
        QVERIFY(received.launches.isEmpty());
    }

    void afterTheFirstHasEndedALaunchStaysWhereItIs()
    {
        auto first = program();
        QVERIFY(!first->goesElsewhere({}));
        first.reset();
        const auto second = program();
        const Received received(*second);
        QVERIFY(!second->goesElsewhere({ { song }, {} }));
        const auto third = program();
        QVERIFY(goesElsewhere(*third, { { other }, {} }));
        QTRY_COMPARE(received.launches.size(), 1);
    }

    void aProgramThatStandsStillBlocksNoLaunch()
    {
        const auto first = program();
        QVERIFY(!first->goesElsewhere({}));
        const auto second = program(u"session_1"_s, 50ms);
        // In this thread, so that the first cannot answer.
        QVERIFY(!second->goesElsewhere({ { song }, {} }));
    }

    void aSocketThatIsLeftOverBlocksNoLaunch()
    {
        if (!m_overBus) {
            leaveSocketBehind(m_folder->filePath(u"quaverly-session_1.socket"_s));
            QFile lock(m_folder->filePath(u"quaverly-session_1.lock"_s));
            QVERIFY(lock.open(QIODevice::WriteOnly));
        }
        const auto first = program();
        const Received received(*first);
        QVERIFY(!first->goesElsewhere({}));
        const auto second = program();
        QVERIFY(goesElsewhere(*second, { { song }, {} }));
        QTRY_COMPARE(received.launches.size(), 1);
    }

    void withoutBusAndFolderEachLaunchIsAlone()
    {
        OneWindow first(noBus(), { u"session_1"_s, {} });
        OneWindow second(noBus(), { u"session_1"_s, m_folder->filePath(u"missing"_s) });
        QVERIFY(!first.goesElsewhere({}));
        QVERIFY(!second.goesElsewhere({}));
    }

    void nobodyElseReachesTheSocket()
    {
        const auto first = program();
        QVERIFY(!first->goesElsewhere({}));
        constexpr QFileDevice::Permissions others
            = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther | QFileDevice::WriteOther;
        const QFileInfoList made = QDir(m_folder->path()).entryInfoList(QDir::Files | QDir::System);
        QCOMPARE(made.size(), m_overBus ? 0 : 2);
        for (const QFileInfo &file : made)
            QVERIFY2(!(file.permissions() & others), qPrintable(file.fileName()));
    }

    void whatIsNoLaunchChangesNothing()
    {
        if (m_overBus)
            return;
        const auto first = program();
        const Received received(*first);
        QVERIFY(!first->goesElsewhere({}));
        QLocalSocket stranger;
        stranger.connectToServer(m_folder->filePath(u"quaverly-session_1.socket"_s));
        stranger.write("GET / HTTP/1.1\n");
        QTRY_COMPARE(stranger.state(), QLocalSocket::UnconnectedState);
        QVERIFY(received.launches.isEmpty());
        const auto second = program();
        QVERIFY(goesElsewhere(*second, {}));
    }

    void theDesktopReachesTheProgramByItsName()
    {
        if (!m_overBus)
            return;
        auto first = program(u"session_1"_s);
        const Received received(*first);
        QVERIFY(!first->goesElsewhere({}));
        const auto otherSession = program(u"session_2"_s);
        const Received byOther(*otherSession);
        QVERIFY(!otherSession->goesElsewhere({}));

        QDBusConnection desktop = connection();
        const auto say = [&](const QString &method, const QVariantList &arguments) {
            QDBusMessage call = QDBusMessage::createMethodCall(
                u"org.quaverly.Quaverly"_s, u"/org/quaverly/Quaverly"_s, u"org.freedesktop.Application"_s, method);
            call.setArguments(arguments);
            const QDBusPendingCall answer = desktop.asyncCall(call);
            while (!answer.isFinished())
                QTest::qWait(1);
            return answer.reply().type();
        };
        const QVariantMap token{ { u"desktop-startup-id"_s, u"shell_TIME5"_s } };
        QCOMPARE(
            say(u"Open"_s, { QStringList{ song.toString(QUrl::FullyEncoded) }, token }), QDBusMessage::ReplyMessage);
        QCOMPARE(say(u"Activate"_s, { QVariantMap() }), QDBusMessage::ReplyMessage);
        QCOMPARE(say(u"ActivateAction"_s, { u"none"_s, QVariantList(), QVariantMap() }), QDBusMessage::ReplyMessage);
        QTRY_COMPARE(received.launches.size(), 3);
        QCOMPARE(received.launches[0].files, QList<QUrl>{ song });
        QCOMPARE(received.launches[0].activationToken, u"shell_TIME5"_s);
        // The next in the row takes the name over.
        first.reset();
        QCOMPARE(say(u"Activate"_s, { QVariantMap() }), QDBusMessage::ReplyMessage);
        QTRY_COMPARE(byOther.launches.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestOneWindow)
#include "test_one_window.moc"
