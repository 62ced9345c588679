#include "engine_host/process/AudioServer.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

bool listens(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (size_t(name.size()) >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
    const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    // A server that is too busy to take another client is there.
    const bool isThere
        = ::connect(client, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 || errno == EAGAIN;
    ::close(client);
    return isThere;
}

QStringList serverPaths(const QProcessEnvironment &environment)
{
    const QString servers = environment.value(u"PULSE_SERVER"_s);
    if (!servers.isEmpty()) {
        QStringList paths;
        for (QString server : servers.split(u' ', Qt::SkipEmptyParts)) {
            // The name of a machine in braces may stand before each.
            server = server.sliced(server.startsWith(u'{') ? server.indexOf(u'}') + 1 : 0);
            if (server.startsWith("unix:"_L1))
                server = server.sliced(5);
            if (server.startsWith(u'/'))
                paths << server;
        }
        return paths;
    }
    QStringList paths;
    if (const QString folder = environment.value(u"PULSE_RUNTIME_PATH"_s); !folder.isEmpty())
        paths << folder + u"/native"_s;
    if (const QString folder = environment.value(u"XDG_RUNTIME_DIR"_s); !folder.isEmpty())
        paths << folder + u"/pulse/native"_s;
    return paths << u"/run/user/%1/pulse/native"_s.arg(::getuid()) << u"/var/run/pulse/native"_s;
}

QString pipeWirePath(const QProcessEnvironment &environment)
{
    const QString name = environment.value(u"PIPEWIRE_REMOTE"_s, u"pipewire-0"_s);
    if (name.startsWith(u'/'))
        return name;
    const QString folder = environment.value(u"PIPEWIRE_RUNTIME_DIR"_s, environment.value(u"XDG_RUNTIME_DIR"_s));
    return folder.isEmpty() ? QString() : folder + u'/' + name;
}

} // namespace

namespace AudioServer {

Sockets sockets(const QProcessEnvironment &environment)
{
    return { serverPaths(environment), pipeWirePath(environment) };
}

Presence presence(const Sockets &sockets)
{
    const QStringList &server = sockets.server;
    if (!server.isEmpty() && std::none_of(server.begin(), server.end(), &listens))
        return Presence::Away;
    if (sockets.pipeWire.isEmpty() || !QFile::exists(sockets.pipeWire))
        return Presence::Listening;
    return listens(sockets.pipeWire) ? Presence::WithPipeWire : Presence::Away;
}

} // namespace AudioServer
