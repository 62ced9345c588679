#include "design/DesktopColorScheme.h"

#include "design/Theme.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QLibraryInfo>
#include <QPalette>
#include <QVersionNumber>

using namespace Qt::StringLiterals;

namespace {

constexpr auto service = "org.freedesktop.portal.Desktop"_L1;
constexpr auto path = "/org/freedesktop/portal/desktop"_L1;
constexpr auto interface = "org.freedesktop.portal.Settings"_L1;
constexpr auto appearance = "org.freedesktop.appearance"_L1;
constexpr auto colorScheme = "color-scheme"_L1;

/// The portal's value for "prefers dark"; 0 is no preference, 2 prefers light.
constexpr uint prefersDark = 1;

} // namespace

DesktopColorScheme::DesktopColorScheme(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
    if (!m_bus.isConnected())
        return;
    m_bus.connect(
        service, path, interface, u"SettingChanged"_s, this, SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage read = QDBusMessage::createMethodCall(service, path, interface, u"Read"_s);
    read << QString(appearance) << QString(colorScheme);
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(read), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        if (reply.isValid())
            apply(reply.value().variant());
    });
}

DesktopColorScheme::~DesktopColorScheme() = default;

bool DesktopColorScheme::isNeeded() { return QLibraryInfo::version() < QVersionNumber(6, 5); }

void DesktopColorScheme::settingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group == appearance && key == colorScheme)
        apply(value.variant());
}

void DesktopColorScheme::apply(const QVariant &value)
{
    QVariant bare = value;
    // Read() packs its value twice.
    while (bare.canConvert<QDBusVariant>())
        bare = bare.value<QDBusVariant>().variant();
    const bool dark = bare.toUInt() == prefersDark;
    if (dark && !m_madeDark && !Theme::isDark(QApplication::palette())) {
        m_madeDark = true;
        QApplication::setPalette(Theme::darkPalette());
    } else if (!dark && m_madeDark) {
        m_madeDark = false;
        QApplication::setPalette(QPalette());
    }
}
