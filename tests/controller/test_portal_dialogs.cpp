#include "controller/PortalDialogs.h"
#include "tests/engine_host/process/PrivateBus.h"
#include "tests/support/ScriptedDialogs.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QFile>
#include <QPushButton>
#include <QShortcut>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <chrono>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A panel that is open, as whoever has asked for it knows it.
class OpenPanel final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Request")

public:
    bool closed = false;

public Q_SLOTS:
    void Close() { closed = true; } // NOLINT: the name is the bus's
};

/// The desktop's portal with one panel.
class Chooser final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")

public:
    explicit Chooser(QDBusConnection connection)
        : bus(std::move(connection))
    {
        registered = bus.registerObject(u"/org/freedesktop/portal/desktop"_s, this, QDBusConnection::ExportAllSlots)
            && bus.registerService(service());
    }
    ~Chooser() override { bus.unregisterService(service()); }
    Q_DISABLE_COPY_MOVE(Chooser)

    static QString service() { return u"org.freedesktop.portal.Desktop"_s; }

    QDBusConnection bus;
    bool registered = false;
    QString method;
    QString title;
    QVariantMap options;
    /// What the user does.
    uint response = 0;
    QStringList uris;
    /// While the panel is open, before the user does it.
    std::function<void()> open = [] { };
    /// As portals before version 0.9 do, which choose the name themselves.
    bool namesRequestsItself = false;
    bool goesAway = false;
    bool showsNothing = false;
    bool saysNothing = false;
    int asked = 0;
    OpenPanel panel;

public Q_SLOTS:
    // NOLINTBEGIN: the names are the bus's
    QDBusObjectPath OpenFile(const QString &, const QString &name, const QVariantMap &wanted, const QDBusMessage &call)
    {
        return show(u"OpenFile"_s, name, wanted, call);
    }
    QDBusObjectPath SaveFile(const QString &, const QString &name, const QVariantMap &wanted, const QDBusMessage &call)
    {
        return show(u"SaveFile"_s, name, wanted, call);
    }
    // NOLINTEND

private:
    QDBusObjectPath show(
        const QString &called, const QString &name, const QVariantMap &wanted, const QDBusMessage &call)
    {
        ++asked;
        method = called;
        title = name;
        if (saysNothing) {
            call.setDelayedReply(true);
            return {};
        }
        options = wanted;
        const QString sender = call.service().mid(1).replace(u'.', u'_');
        const QString token = namesRequestsItself ? u"own"_s : wanted[u"handle_token"_s].toString();
        const QString path = u"/org/freedesktop/portal/desktop/request/"_s + sender + u'/' + token;
        bus.registerObject(path, &panel, QDBusConnection::ExportAllSlots);
        QTimer::singleShot(20, this, [this, path] {
            open();
            if (showsNothing)
                return;
            if (goesAway) {
                bus.unregisterService(service());
                return;
            }
            QDBusMessage answer = QDBusMessage::createSignal(path, u"org.freedesktop.portal.Request"_s, u"Response"_s);
            answer << response << QVariantMap{ { u"uris"_s, uris } };
            bus.send(answer);
        });
        return QDBusObjectPath(path);
    }
};

class TestPortalDialogs final : public QObject {
    Q_OBJECT

    PrivateBus m_bus;
    int m_connections = 0;
    std::shared_ptr<DialogScript> m_otherwise;
    std::unique_ptr<PortalDialogs> m_dialogs;

    QDBusConnection connection()
    {
        return QDBusConnection::connectToBus(m_bus.address(), u"connection %1"_s.arg(++m_connections));
    }

    /// Asks twice.
    void isWaitedForOnce(const Chooser &chooser, const PortalRequest::Timeouts &timeouts)
    {
        PortalDialogs dialogs(connection(), std::make_unique<ScriptedDialogs>(m_otherwise), timeouts);
        QCOMPARE(dialogs.chooseFileToOpen({ u"gp"_s }), QUrl(u"file:///otherwise.gp"_s));
        QCOMPARE(dialogs.chooseFileToOpen({ u"gp"_s }), QUrl(u"file:///otherwise.gp"_s));
        QCOMPARE(chooser.asked, 1);
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(!m_bus.address().isEmpty());
        m_otherwise = std::make_shared<DialogScript>();
        m_otherwise->fileToOpen = QUrl(u"file:///otherwise.gp"_s);
        m_otherwise->fileToSave = QUrl(u"file:///otherwise.gp"_s);
        m_dialogs = std::make_unique<PortalDialogs>(connection(), std::make_unique<ScriptedDialogs>(m_otherwise));
    }

    void cleanup()
    {
        m_dialogs.reset();
        for (; m_connections > 0; --m_connections)
            QDBusConnection::disconnectFromBus(u"connection %1"_s.arg(m_connections));
    }

    void aFileIsChosenInTheDesktopsPanel()
    {
        Chooser chooser(connection());
        QVERIFY(chooser.registered);
        chooser.uris = QStringList{ u"file:///music/F%C3%BCr%20Elise.gp"_s };
        for (const bool own : { false, true }) {
            chooser.namesRequestsItself = own;
            const auto file = m_dialogs->chooseFileToOpen({ u"gp"_s, u"pdf"_s });
            QVERIFY(file);
            QCOMPARE(file->toLocalFile(), u"/music/Für Elise.gp"_s);
        }
        QCOMPARE(chooser.method, u"OpenFile"_s);
        QCOMPARE(chooser.title, u"Open"_s);
        QCOMPARE(chooser.options[u"modal"_s], QVariant(true));
        QVERIFY(!chooser.options.contains(u"multiple"_s));
        const auto filters = chooser.options[u"filters"_s].value<QDBusArgument>();
        QCOMPARE(filters.currentSignature(), u"a(sa(us))"_s);
        QCOMPARE(m_otherwise->opened, 0);
    }

    void theUserMayChooseNothing()
    {
        Chooser chooser(connection());
        chooser.response = 1;
        QVERIFY(!m_dialogs->chooseFileToOpen({ u"gp"_s }));
        QVERIFY(!m_dialogs->chooseFileToSave(u"x.gp"_s, u"gp"_s));
        QCOMPARE(m_otherwise->opened + m_otherwise->saved, 0);
    }

    void whereToSave()
    {
        const QTemporaryDir folder;
        Chooser chooser(connection());
        const auto choose = [&](const QString &name) {
            chooser.uris = QStringList{ QUrl::fromLocalFile(folder.filePath(name)).toString(QUrl::FullyEncoded) };
            const auto file = m_dialogs->chooseFileToSave(u"AC/DC.gp"_s, u"gp"_s);
            return file ? file->toLocalFile() : QString();
        };
        QCOMPARE(choose(u"song.gp"_s), folder.filePath(u"song.gp"_s));
        QCOMPARE(chooser.method, u"SaveFile"_s);
        QCOMPARE(chooser.options[u"current_name"_s].toString(), u"AC-DC.gp"_s);
        QVERIFY(chooser.options[u"current_folder"_s].toByteArray().endsWith('\0'));
        QCOMPARE(choose(u"song"_s), folder.filePath(u"song.gp"_s));
        // The user was not asked whether that may be replaced.
        QFile there(folder.filePath(u"song.gp"_s));
        QVERIFY(there.open(QIODevice::WriteOnly));
        QCOMPARE(choose(u"song"_s), folder.filePath(u"song"_s));
    }

    void withoutAPortalTheOtherPanelsOpen()
    {
        QCOMPARE(m_dialogs->chooseFileToOpen({ u"gp"_s }), QUrl(u"file:///otherwise.gp"_s));
        QCOMPARE(m_dialogs->chooseFileToSave(u"x.gp"_s, u"gp"_s), QUrl(u"file:///otherwise.gp"_s));
        PortalDialogs unconnected(QDBusConnection(u"nowhere"_s), std::make_unique<ScriptedDialogs>(m_otherwise));
        QCOMPARE(unconnected.chooseFileToOpen({ u"gp"_s }), QUrl(u"file:///otherwise.gp"_s));
        QCOMPARE(m_otherwise->opened, 2);
    }

    void aPortalThatEndsLeavesNobodyWaiting()
    {
        Chooser chooser(connection());
        chooser.goesAway = true;
        QVERIFY(!m_dialogs->chooseFileToOpen({ u"gp"_s }));
    }

    void aPanelThatCannotBeShownIsReplaced()
    {
        QWidget window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        Chooser chooser(connection());
        chooser.response = 2;
        QCOMPARE(m_dialogs->chooseFileToOpen({ u"gp"_s }), QUrl(u"file:///otherwise.gp"_s));
        QCOMPARE(m_dialogs->chooseFileToSave(u"x.gp"_s, u"gp"_s), QUrl(u"file:///otherwise.gp"_s));
        chooser.goesAway = true;
        QCOMPARE(m_dialogs->chooseFileToOpen({ u"gp"_s }), QUrl(u"file:///otherwise.gp"_s));
        QCOMPARE(chooser.asked, 3);
    }

    void aPanelThatWasSeenAndClosedIsNotReplaced()
    {
        QWidget window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        Chooser chooser(connection());
        chooser.response = 2;
        chooser.open = [] { Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive); };
        QVERIFY(!m_dialogs->chooseFileToOpen({ u"gp"_s }));
        QCOMPARE(m_otherwise->opened, 0);
    }

    void aPanelThatDoesNotComeIsWaitedForOnce()
    {
        QWidget window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        Chooser chooser(connection());
        chooser.showsNothing = true;
        isWaitedForOnce(chooser, { .panel = 50ms });
    }

    void aPortalThatSaysNothingIsWaitedForOnce()
    {
        Chooser chooser(connection());
        chooser.saysNothing = true;
        isWaitedForOnce(chooser, { .answer = 50ms });
    }

    void theWindowTakesNothingMeanwhile()
    {
        QPushButton button(u"x"_s);
        int clicks = 0;
        connect(&button, &QPushButton::clicked, this, [&clicks] { ++clicks; });
        QShortcut shortcut(Qt::CTRL | Qt::Key_O, &button);
        int calls = 0;
        connect(&shortcut, &QShortcut::activated, this, [&calls] { ++calls; });
        button.show();
        QVERIFY(QTest::qWaitForWindowActive(&button));
        const auto use = [&button] {
            QTest::mouseClick(button.windowHandle(), Qt::LeftButton, {}, button.rect().center());
            QTest::keyClick(button.windowHandle(), Qt::Key_Space);
            QTest::keyClick(button.windowHandle(), Qt::Key_O, Qt::ControlModifier);
        };
        Chooser chooser(connection());
        bool closed = true;
        chooser.open = [&] {
            use();
            closed = button.windowHandle()->close();
        };
        m_dialogs->chooseFileToOpen({ u"gp"_s });
        QVERIFY(!closed);
        QVERIFY(button.isVisible());
        QCOMPARE(clicks, 0);
        QCOMPARE(calls, 0);
        use();
        QCOMPARE(clicks, 2);
        QCOMPARE(calls, 1);
    }

    /// Qt gives the focus that comes back from a panel to the window that is modal, and the keys with it.
    void theWindowKeepsItsFocusMeanwhile()
    {
        QPushButton button(u"x"_s);
        button.show();
        QVERIFY(QTest::qWaitForWindowActive(&button));
        Chooser chooser(connection());
        bool isActive = false;
        const QWindow *modal = button.windowHandle();
        chooser.open = [&] {
            isActive = button.isActiveWindow();
            modal = QGuiApplication::modalWindow();
        };
        m_dialogs->chooseFileToOpen({ u"gp"_s });
        QVERIFY(isActive);
        QVERIFY(!modal);
    }

    void escapeGivesThePanelUp()
    {
        QPushButton button(u"x"_s);
        // As in a menu of the real window.
        const QShortcut shortcut(Qt::Key_Escape, &button);
        button.show();
        QVERIFY(QTest::qWaitForWindowActive(&button));
        Chooser chooser(connection());
        chooser.showsNothing = true;
        chooser.open = [&] {
            // The user has looked elsewhere meanwhile, which is taken for the panel.
            Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
            QTest::keyClick(button.windowHandle(), Qt::Key_Escape);
        };
        QVERIFY(!m_dialogs->chooseFileToOpen({ u"gp"_s }));
        QCOMPARE(m_otherwise->opened, 0);
        QTRY_VERIFY(chooser.panel.closed);
    }

    void theUsersOwnChoiceOfPanelsStands()
    {
        qunsetenv("QT_QPA_PLATFORMTHEME");
        qunsetenv("QT_NO_XDG_DESKTOP_PORTAL");
        QVERIFY(PortalDialogs::areWanted());
        qputenv("QT_QPA_PLATFORMTHEME", "gtk3");
        QVERIFY(!PortalDialogs::areWanted());
        qunsetenv("QT_QPA_PLATFORMTHEME");
        qputenv("QT_NO_XDG_DESKTOP_PORTAL", "1");
        QVERIFY(!PortalDialogs::areWanted());
        qunsetenv("QT_NO_XDG_DESKTOP_PORTAL");
    }
};

QTEST_MAIN(TestPortalDialogs)
#include "test_portal_dialogs.moc"
