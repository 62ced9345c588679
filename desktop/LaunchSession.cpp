#include "desktop/LaunchSession.h"

#include <QCryptographicHash>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/// The window system's own name for the screen: one bus, and one folder for sockets, may serve several sessions.
QString screenName(const QProcessEnvironment &environment, const QString &platform)
{
    if (platform.startsWith("wayland"_L1))
        return environment.value(u"WAYLAND_DISPLAY"_s, u"wayland-0"_s);
    if (platform != "xcb"_L1)
        return {};
    // ":0" and ":0.0" are one server, and so are its monitors.
    QString display = environment.value(u"DISPLAY"_s);
    const qsizetype colon = display.lastIndexOf(u':');
    const qsizetype dot = display.indexOf(u'.', colon);
    return colon >= 0 && dot >= 0 ? display.left(dot) : display;
}

/// The folder, if it is one that only `user` can enter.
QString ownFolder(const QString &path, uid_t user)
{
    const QFileInfo folder(path);
    constexpr QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup
        | QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;
    const bool own = folder.isAbsolute() && folder.isDir() && folder.ownerId() == user
        && !(folder.permissions() & others);
    return own ? folder.filePath() : QString();
}

} // namespace

LaunchSession LaunchSession::find(const QProcessEnvironment &environment, const QString &platform, uid_t user)
{
    const QString text = QString::number(user) + u'\n' + platform + u'\n' + screenName(environment, platform);
    const QByteArray hash = QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    return { u"session_"_s + QString::fromLatin1(hash), ownFolder(environment.value(u"XDG_RUNTIME_DIR"_s), user) };
}
