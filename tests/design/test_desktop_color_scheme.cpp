#include "design/DesktopColorScheme.h"
#include "design/Theme.h"
#include "tests/engine_host/process/PrivateBus.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QLabel>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The desktop's settings portal.
class Portal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit Portal(const QDBusConnection &connection)
        : bus(connection)
    {
        registered = bus.registerObject(u"/org/freedesktop/portal/desktop"_s, this,
                         QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals)
            && bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }

    ~Portal() override
    {
        bus.unregisterService(u"org.freedesktop.portal.Desktop"_s);
        bus.unregisterObject(u"/org/freedesktop/portal/desktop"_s);
    }
    Q_DISABLE_COPY_MOVE(Portal)

    QDBusConnection bus;
    bool registered = false;
    uint scheme = 0;
    int asked = 0;

    void change(uint now)
    {
        scheme = now;
        Q_EMIT SettingChanged(u"org.freedesktop.appearance"_s, u"color-scheme"_s, QDBusVariant(now));
    }

public Q_SLOTS:
    // NOLINTBEGIN: the names are the bus's
    QDBusVariant Read(const QString &group, const QString &key)
    {
        ++asked;
        const bool known = group == "org.freedesktop.appearance"_L1 && key == "color-scheme"_L1;
        return QDBusVariant(QVariant::fromValue(QDBusVariant(known ? scheme : 99)));
    }
    // NOLINTEND

Q_SIGNALS:
    void SettingChanged(const QString &group, const QString &key, const QDBusVariant &value);
};

bool isDark() { return Theme::isDark(QApplication::palette()); }

} // namespace

class TestDesktopColorScheme final : public QObject {
    Q_OBJECT

    PrivateBus m_bus;

    QDBusConnection connection(const char *name)
    {
        return QDBusConnection::connectToBus(m_bus.address(), QString::fromLatin1(name));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(!m_bus.address().isEmpty());
        Theme::install();
        QVERIFY(!isDark());
    }

    void withoutAPortalNothingChanges()
    {
        const DesktopColorScheme unconnected(QDBusConnection(u"nowhere"_s));
        const DesktopColorScheme alone(connection("alone"));
        Portal portal(connection("late portal"));
        const DesktopColorScheme later(connection("later"));
        QTRY_COMPARE(portal.asked, 1);
        QVERIFY(!isDark());
    }

    void theDesktopIsFollowedAtStartAndWhileRunning()
    {
        Portal portal(connection("portal"));
        QVERIFY(portal.registered);
        portal.scheme = 1;
        QLabel shown(u"x"_s);
        shown.show();
        {
            const DesktopColorScheme scheme(connection("program"));
            QTRY_VERIFY(isDark());
            QTRY_VERIFY(Theme::isDark(shown.palette()));
            QCOMPARE(shown.palette().color(QPalette::Window), Theme::colors(shown.palette()).bar);
            // Other settings are not this one.
            Q_EMIT portal.SettingChanged(u"org.freedesktop.appearance"_s, u"contrast"_s, QDBusVariant(0U));
            portal.change(2);
            QTRY_VERIFY(!isDark());
            QTRY_VERIFY(!Theme::isDark(shown.palette()));
            portal.change(1);
            QTRY_VERIFY(isDark());
            portal.change(0);
            QTRY_VERIFY(!isDark());
        }
    }

    void colorsThatAreDarkAlreadyStayTheDesktops()
    {
        const QPalette own(Qt::black, Qt::darkBlue);
        QApplication::setPalette(own);
        QVERIFY(isDark());
        Portal portal(connection("dark portal"));
        portal.scheme = 1;
        const DesktopColorScheme scheme(connection("dark program"));
        QTRY_COMPARE(portal.asked, 1);
        portal.change(2);
        // What the portal says next has been heard when this has been answered.
        const DesktopColorScheme another(connection("dark program"));
        QTRY_COMPARE(portal.asked, 2);
        QVERIFY(isDark());
        QApplication::setPalette(QPalette());
    }
};

QTEST_MAIN(TestDesktopColorScheme)
#include "test_desktop_color_scheme.moc"
