#include "desktop/LaunchSocket.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QThread>

#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What says that a launch was taken.
constexpr char taken = '+';
/// More than any command line can hold.
constexpr qint64 longestLaunch = qint64(4) * 1024 * 1024;

QByteArray written(const Launch &launch)
{
    const QJsonObject object{
        { u"files"_s, QJsonArray::fromStringList(QUrl::toStringList(launch.files, QUrl::FullyEncoded)) },
        { u"token"_s, launch.activationToken },
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<Launch> understood(const QByteArray &line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return std::nullopt;
    Launch launch;
    const QJsonArray files = document[u"files"_s].toArray();
    for (const QJsonValue file : files)
        launch.files << QUrl(file.toString());
    launch.activationToken = document[u"token"_s].toString();
    return launch;
}

/// A program that has the lock may not listen yet.
bool connectTo(QLocalSocket &socket, const QString &path)
{
    const QDeadlineTimer deadline(1s);
    while (true) {
        socket.connectToServer(path);
        if (socket.waitForConnected(1000))
            return true;
        if (deadline.hasExpired())
            return false;
        QThread::msleep(20);
    }
}

} // namespace

LaunchSocket::LaunchSocket(const QString &folder, const QString &sessionKey, std::chrono::milliseconds answerTimeout)
    : m_path(folder.isEmpty() ? QString() : folder + u"/quaverly-"_s + sessionKey)
    , m_answerTimeout(answerTimeout)
{
    connect(&m_server, &QLocalServer::newConnection, this, &LaunchSocket::takeConnection);
}

LaunchSocket::~LaunchSocket()
{
    m_server.close();
    // The file stays: were it removed, another program might hold the lock of a file that is gone.
    if (m_lock >= 0)
        ::close(m_lock);
}

bool LaunchSocket::receive()
{
    if (m_server.isListening())
        return true;
    if (m_path.isEmpty())
        return false;
    const QByteArray lockPath = QFile::encodeName(m_path + u".lock"_s);
    m_lock = ::open(lockPath.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_lock < 0)
        return false;
    if (::flock(m_lock, LOCK_EX | LOCK_NB) == 0) {
        const QString path = m_path + u".socket"_s;
        QLocalServer::removeServer(path);
        m_server.setSocketOptions(QLocalServer::UserAccessOption);
        if (m_server.listen(path))
            return true;
    }
    ::close(m_lock);
    m_lock = -1;
    return false;
}

bool LaunchSocket::hand(const Launch &launch) const
{
    if (m_path.isEmpty())
        return false;
    QLocalSocket socket;
    if (!connectTo(socket, m_path + u".socket"_s))
        return false;
    socket.write(written(launch));
    char answer = 0;
    return socket.waitForReadyRead(static_cast<int>(m_answerTimeout.count())) && socket.getChar(&answer)
        && answer == taken;
}

void LaunchSocket::takeConnection()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(*socket); });
        read(*socket);
    }
}

void LaunchSocket::read(QLocalSocket &socket)
{
    if (!socket.canReadLine()) {
        if (socket.bytesAvailable() > longestLaunch)
            socket.abort();
        return;
    }
    const std::optional<Launch> launch = understood(socket.readLine());
    if (!launch) {
        socket.abort();
        return;
    }
    socket.putChar(taken);
    socket.disconnectFromServer();
    // Later, so that the launcher has its answer before the file is read.
    QMetaObject::invokeMethod(this, [this, launch] { Q_EMIT launched(*launch); }, Qt::QueuedConnection);
}
