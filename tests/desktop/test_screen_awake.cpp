#include "controller/AlphaTabController.h"
#include "desktop/ScreenAwake.h"
#include "tests/engine_host/process/PrivateBus.h"
#include "tests/support/TestSurroundings.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString requestPath = u"/org/freedesktop/portal/desktop/request/1"_s;

} // namespace

/// One wish that the portal has granted.
class Request final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Request")

public:
    int closed = 0;

public Q_SLOTS:
    void Close() { ++closed; } // NOLINT

Q_SIGNALS:
    void Response(uint response, const QVariantMap &results); // NOLINT
};

class Portal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Inhibit")

public:
    explicit Portal(QDBusConnection bus)
        : m_bus(std::move(bus))
    {
        registered = m_bus.registerObject(portalPath, this, QDBusConnection::ExportAllSlots)
            && m_bus.registerObject(
                requestPath, &request, QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals)
            && m_bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }

    bool registered = false;
    int asked = 0;
    uint flags = 0;
    Request request;

public Q_SLOTS:
    QDBusObjectPath Inhibit(const QString &, uint what, const QVariantMap &) // NOLINT
    {
        ++asked;
        flags = what;
        return QDBusObjectPath(requestPath);
    }

private:
    QDBusConnection m_bus;
};

class ScreenSaver final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    explicit ScreenSaver(QDBusConnection bus)
        : m_bus(std::move(bus))
    {
        registered = m_bus.registerObject(u"/org/freedesktop/ScreenSaver"_s, this, QDBusConnection::ExportAllSlots)
            && m_bus.registerService(u"org.freedesktop.ScreenSaver"_s);
    }

    bool registered = false;
    QStringList by;
    QList<uint> ended;

public Q_SLOTS:
    // NOLINTBEGIN
    uint Inhibit(const QString &application, const QString &)
    {
        by << application;
        return 40 + static_cast<uint>(by.size());
    }
    void UnInhibit(uint cookie) { ended << cookie; }
    // NOLINTEND

private:
    QDBusConnection m_bus;
};

class TestScreenAwake final : public QObject {
    Q_OBJECT

    std::unique_ptr<PrivateBus> m_bus;
    int m_connections = 0;
    std::unique_ptr<TestSurroundings> m_world;
    std::unique_ptr<AlphaTabController> m_controller;
    std::unique_ptr<ScreenAwake> m_awake;

    QDBusConnection connection()
    {
        return QDBusConnection::connectToBus(m_bus->address(), u"connection %1"_s.arg(++m_connections));
    }

    void start() { m_awake = std::make_unique<ScreenAwake>(connection(), *m_controller); }
    void play(bool playing) { m_controller->handle({ { u"type"_s, u"state"_s }, { u"playing"_s, playing } }); }

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        QVERIFY(!m_bus->address().isEmpty());
        m_world = std::make_unique<TestSurroundings>();
        m_controller = std::make_unique<AlphaTabController>(m_world->make());
    }

    void cleanup()
    {
        m_awake.reset();
        m_controller.reset();
        for (; m_connections > 0; --m_connections)
            QDBusConnection::disconnectFromBus(u"connection %1"_s.arg(m_connections));
        m_bus.reset();
    }

    void whileItPlaysThePortalKeepsTheScreenAwake()
    {
        const Portal portal(connection());
        QVERIFY(portal.registered);
        const ScreenSaver saver(connection());
        start();
        play(true);
        QTRY_COMPARE(portal.asked, 1);
        constexpr uint idle = 8;
        QCOMPARE(portal.flags, idle);
        play(true);
        play(false);
        QTRY_COMPARE(portal.request.closed, 1);
        play(true);
        QTRY_COMPARE(portal.asked, 2);
        QTRY_VERIFY(m_awake->isHeld());
        m_awake.reset();
        QTRY_COMPARE(portal.request.closed, 2);
        QVERIFY(saver.by.isEmpty());
    }

    void elseTheScreenSaverDoes()
    {
        const ScreenSaver saver(connection());
        QVERIFY(saver.registered);
        start();
        play(true);
        QTRY_COMPARE(saver.by, QStringList{ u"Quaverly"_s });
        play(false);
        QTRY_COMPARE(saver.ended, QList<uint>{ 41 });
        play(true);
        QTRY_COMPARE(saver.by.size(), 2);
        play(false);
        QTRY_COMPARE(saver.ended, (QList<uint>{ 41, 42 }));
    }

    void aPortalThatCannotHandsItOn()
    {
        Portal portal(connection());
        const ScreenSaver saver(connection());
        start();
        play(true);
        QTRY_COMPARE(portal.asked, 1);
        // The answer to the question has come when this one's has.
        QTRY_VERIFY((Q_EMIT portal.request.Response(2, {}), saver.by.size() == 1));
        play(false);
        QTRY_COMPARE(saver.ended, QList<uint>{ 41 });
    }

    void aPauseBeforeTheAnswerIsKept()
    {
        const Portal portal(connection());
        start();
        play(true);
        play(false);
        QTRY_COMPARE(portal.request.closed, 1);
        QCOMPARE(portal.asked, 1);
    }

    void withoutADesktopMusicPlaysToo()
    {
        start();
        play(true);
        play(false);
        const ScreenSaver saver(connection());
        play(true);
        QTRY_COMPARE(saver.by.size(), 1);
    }
};

QTEST_MAIN(TestScreenAwake)
#include "test_screen_awake.moc"
