#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

/// What somebody who starts the program wants of it.
struct Launch {
    /// Absolute, in the order given.
    QList<QUrl> files;
    /// With this the launcher lets the window come to the front (xdg-activation on Wayland, startup notification on
    /// X11). Empty where it gave none.
    QString activationToken;

    /// What the launcher has left in this process's environment. Qt takes it away from there, so it is to be asked
    /// before the application object exists.
    static QString environmentToken()
    {
        const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
        return token.isEmpty() ? qEnvironmentVariable("DESKTOP_STARTUP_ID") : token;
    }
};
