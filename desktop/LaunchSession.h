#pragma once

#include <QProcessEnvironment>
#include <QString>

#include <sys/types.h>

/// Where launches meet: those of one user on one screen do, all others do not.
struct LaunchSession {
    /// Differs for each user and screen; letters, digits and underscores.
    QString key;
    /// The user's folder for sockets, which nobody else can enter; empty where there is none.
    QString socketFolder;

    /// @param platform Qt's name of the window system, such as "xcb" or "wayland"
    static LaunchSession find(const QProcessEnvironment &environment, const QString &platform, uid_t user);
};
