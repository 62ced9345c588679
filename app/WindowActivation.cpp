#include "app/WindowActivation.h"

#include <QGuiApplication>
#include <QString>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

namespace {

/// Words of the window manager that go through one X connection (Extended Window Manager Hints, Startup Notification
/// Protocol).
class XWindowManager final {
public:
    explicit XWindowManager(xcb_connection_t *connection)
        : m_connection(connection)
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    {
    }

    /// Asks for the front in the name of what the user did at `time`.
    void activate(xcb_window_t window, unsigned int time)
    {
        xcb_change_property(
            m_connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL, 32, 1, &time);
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = atom("_NET_ACTIVE_WINDOW");
        constexpr uint32_t application = 1;
        event.data.data32[0] = application;
        event.data.data32[1] = time;
        send(event, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    }

    /// Ends the launcher's waiting for a new window: there will be none.
    void endLaunch(const QString &token)
    {
        QString quoted = token;
        quoted.replace(u'\\', R"(\\)"_L1).replace(u'"', R"(\")"_L1);
        const QByteArray text = (R"(remove: ID=")"_L1 + quoted + u'"').toUtf8();
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 8;
        // Any window that lives until the last part has been sent.
        event.window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, event.window, m_root, 0, 0, 1, 1, 0,
            XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        event.type = atom("_NET_STARTUP_INFO_BEGIN");
        // With the zero at the end, in parts of twenty bytes.
        constexpr qsizetype partSize = sizeof(event.data.data8);
        for (qsizetype sent = 0; sent <= text.size(); sent += partSize) {
            std::fill(std::begin(event.data.data8), std::end(event.data.data8), uint8_t(0));
            const QByteArray part = text.mid(sent, partSize);
            std::copy(part.begin(), part.end(), event.data.data8);
            send(event, XCB_EVENT_MASK_PROPERTY_CHANGE);
            event.type = atom("_NET_STARTUP_INFO");
        }
        xcb_destroy_window(m_connection, event.window);
    }

    void flush() { xcb_flush(m_connection); }

private:
    xcb_atom_t atom(const QByteArray &name)
    {
        const auto cookie = xcb_intern_atom(m_connection, false, static_cast<uint16_t>(name.size()), name.constData());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(m_connection, cookie, nullptr), &std::free);
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    void send(const xcb_client_message_event_t &event, uint32_t mask)
    {
        xcb_send_event(m_connection, false, m_root, mask, reinterpret_cast<const char *>(&event));
    }

    xcb_connection_t *const m_connection;
    const xcb_window_t m_root;
};

xcb_connection_t *xConnection()
{
    const auto *application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return application ? application->connection() : nullptr;
}

} // namespace

namespace WindowActivation {

void bringToFront(QWidget &window, const QString &token)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    // Qt's Wayland part takes the token from here.
    if (!token.isEmpty() && QGuiApplication::platformName().startsWith("wayland"_L1))
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    window.activateWindow();
    xcb_connection_t *connection = token.isEmpty() ? nullptr : xConnection();
    if (!connection)
        return;
    XWindowManager manager(connection);
    if (const unsigned int time = launchTime(token))
        manager.activate(static_cast<xcb_window_t>(window.winId()), time);
    manager.endLaunch(token);
    manager.flush();
}

unsigned int launchTime(const QString &token)
{
    const QString mark = u"_TIME"_s;
    const qsizetype at = token.lastIndexOf(mark);
    return at < 0 ? 0 : QStringView(token).mid(at + mark.size()).toUInt();
}

} // namespace WindowActivation
