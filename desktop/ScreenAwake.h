#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>

class AlphaTabController;
class QDBusMessage;

/// Keeps the screen from blanking while music plays, which is when nobody touches keyboard or mouse: through the
/// desktop's portal, else through its screen saver. The desktop ends it by itself when the program ends in any way.
class ScreenAwake final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ScreenAwake)

public:
    ScreenAwake(const QDBusConnection &bus, AlphaTabController &controller, QObject *parent = nullptr);
    ~ScreenAwake() override;

    /// Whether the desktop has agreed to keep the screen awake.
    bool isHeld() const { return m_state == State::HeldByPortal || m_state == State::HeldByScreenSaver; }

private Q_SLOTS:
    void portalResponded(uint response);

private:
    enum class State { Free, Asking, HeldByPortal, HeldByScreenSaver };

    void follow(bool playing);
    void askPortal();
    void askScreenSaver();
    void portalHolds(const QDBusObjectPath &request);
    void release();

    QDBusConnection m_bus;
    State m_state = State::Free;
    bool m_wanted = false;
    /// Of the portal.
    QString m_request;
    /// Of the screen saver.
    uint m_cookie = 0;
};
