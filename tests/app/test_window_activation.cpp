#include "app/WindowActivation.h"

#include <QApplication>
#include <QProcess>
#include <QTest>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

namespace {

template <typename Reply> using Answer = std::unique_ptr<Reply, decltype(&std::free)>;

/// Hears on a connection of its own what a program tells the window manager and those who wait for a launch.
class Listener final {
public:
    Listener()
        : m_connection(xcb_connect(nullptr, nullptr))
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root)
    {
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
        m_activate = atom("_NET_ACTIVE_WINDOW");
        m_begin = atom("_NET_STARTUP_INFO_BEGIN");
        m_more = atom("_NET_STARTUP_INFO");
    }

    ~Listener() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY_MOVE(Listener)

    struct Activation {
        xcb_window_t window;
        uint32_t source;
        uint32_t time;
    };

    QList<Activation> activations;
    QList<QByteArray> launches;

    /// Hears everything that has been said so far.
    void listen()
    {
        // Behind the answer to a question nothing is on its way any more.
        atom("QUAVERLY_ANYTHING");
        using Event = Answer<xcb_generic_event_t>;
        for (Event event(nullptr, &std::free); event.reset(xcb_poll_for_event(m_connection)), event;) {
            if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE)
                hear(*reinterpret_cast<const xcb_client_message_event_t *>(event.get()));
        }
    }

    /// The time of the user's last deed in that window, as the program has it.
    uint32_t userTime(xcb_window_t window)
    {
        const auto cookie
            = xcb_get_property(m_connection, false, window, atom("_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL, 0, 1);
        const Answer<xcb_get_property_reply_t> answer(
            xcb_get_property_reply(m_connection, cookie, nullptr), &std::free);
        if (!answer || xcb_get_property_value_length(answer.get()) != sizeof(uint32_t))
            return 0;
        return *static_cast<const uint32_t *>(xcb_get_property_value(answer.get()));
    }

private:
    xcb_atom_t atom(const QByteArray &name)
    {
        const auto cookie = xcb_intern_atom(m_connection, false, static_cast<uint16_t>(name.size()), name.constData());
        const Answer<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(m_connection, cookie, nullptr), &std::free);
        return answer ? answer->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    void hear(const xcb_client_message_event_t &event)
    {
        if (event.type == m_activate)
            activations << Activation{ event.window, event.data.data32[0], event.data.data32[1] };
        if (event.type != m_begin && event.type != m_more)
            return;
        if (event.type == m_begin)
            m_text.clear();
        const auto *end = std::find(std::begin(event.data.data8), std::end(event.data.data8), uint8_t(0));
        m_text.append(reinterpret_cast<const char *>(event.data.data8), end - std::begin(event.data.data8));
        if (end != std::end(event.data.data8))
            launches << m_text;
    }

    xcb_connection_t *const m_connection;
    const xcb_window_t m_root;
    xcb_atom_t m_activate;
    xcb_atom_t m_begin;
    xcb_atom_t m_more;
    QByteArray m_text;
};

} // namespace

/// What the window manager is told, on an X server of the test's own.
class TestWindowActivation final : public QObject {
    Q_OBJECT

    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<Listener> m_listener;

    xcb_window_t id() const { return static_cast<xcb_window_t>(m_window->winId()); }

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_listener = std::make_unique<Listener>();
    }

    void theFrontIsAskedForAtTheTimeOfTheClick()
    {
        WindowActivation::bringToFront(*m_window, u"files/12-0-host_TIME12345"_s);
        QTRY_VERIFY((m_listener->listen(), !m_listener->launches.isEmpty()));
        QCOMPARE(m_listener->activations.size(), 1);
        QCOMPARE(m_listener->activations[0].window, id());
        QCOMPARE(m_listener->activations[0].source, 1U);
        QCOMPARE(m_listener->activations[0].time, 12345U);
        QCOMPARE(m_listener->userTime(id()), 12345U);
    }

    void theLaunchersWaitingEnds_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<QByteArray>("said");
        QTest::newRow("with a time") << u"a_TIME1"_s << QByteArray(R"(remove: ID="a_TIME1")");
        QTest::newRow("without") << u"token"_s << QByteArray(R"(remove: ID="token")");
        QTest::newRow("full part") << u"1234567"_s << QByteArray(R"(remove: ID="1234567")");
        QTest::newRow("quoted") << u"a\"b\\c"_s << QByteArray(R"(remove: ID="a\"b\\c")");
        QTest::newRow("long") << QString(300, u'x') << "remove: ID=\"" + QByteArray(300, 'x') + '"';
    }

    void theLaunchersWaitingEnds()
    {
        QFETCH(QString, token);
        QFETCH(QByteArray, said);
        WindowActivation::bringToFront(*m_window, token);
        QTRY_VERIFY((m_listener->listen(), !m_listener->launches.isEmpty()));
        QCOMPARE(m_listener->launches, QList<QByteArray>{ said });
    }

    void withoutATokenNobodyIsTold()
    {
        WindowActivation::bringToFront(*m_window, {});
        // What follows comes behind whatever that might have said.
        WindowActivation::bringToFront(*m_window, u"second_TIME2"_s);
        QTRY_VERIFY((m_listener->listen(), !m_listener->launches.isEmpty()));
        QCOMPARE(m_listener->launches, QList<QByteArray>{ R"(remove: ID="second_TIME2")" });
        QCOMPARE(m_listener->activations.size(), 1);
    }

    void aMinimizedWindowComesBack()
    {
        m_window->showMinimized();
        WindowActivation::bringToFront(*m_window, u"files_TIME7"_s);
        QVERIFY(!m_window->isMinimized());
        QTRY_VERIFY((m_listener->listen(), !m_listener->launches.isEmpty()));
        QCOMPARE(m_listener->activations.size(), 1);
    }
};

int main(int argc, char *argv[])
{
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start(
        u"Xvfb"_s, { u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"800x600x24"_s, u"-nolisten"_s, u"tcp"_s });
    while (!server.canReadLine() && server.waitForReadyRead()) { }
    const QByteArray number = server.readLine().trimmed();
    if (number.isEmpty())
        return 1;
    qputenv("DISPLAY", ':' + number);
    qputenv("QT_QPA_PLATFORM", "xcb");
    int status = 0;
    {
        QApplication application(argc, argv);
        TestWindowActivation test;
        status = QTest::qExec(&test, argc, argv);
    }
    server.terminate();
    server.waitForFinished();
    return status;
}

#include "test_window_activation.moc"
