#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

class QDBusVariant;

/// Turns the application dark when the desktop asks for it, at start and while it runs, and back.
///
/// Qt learns it from GNOME, KDE and others by itself from 6.5 on. Before, it knows the colours of some desktops only;
/// this asks the desktop's settings portal (org.freedesktop.portal.Settings, "color-scheme"). Where there is none, or
/// where the desktop's colours are dark already, nothing changes.
class DesktopColorScheme final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DesktopColorScheme)

public:
    /// Asks at once, without waiting for the answer.
    explicit DesktopColorScheme(const QDBusConnection &bus, QObject *parent = nullptr);
    ~DesktopColorScheme() override;

    /// Whether this is needed with the Qt that the program runs on.
    static bool isNeeded();

private Q_SLOTS:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void apply(const QVariant &value);

    QDBusConnection m_bus;
    bool m_madeDark = false;
};
