#pragma once

#include <QDBusConnection>

#include <chrono>
#include <optional>

struct AudioThread;

/// The desktop's service that raises the priority of audio threads for ordinary users; it comes with PulseAudio and
/// PipeWire. Each call waits for the service's answer: not for the main thread.
/// Source: the interface org.freedesktop.RealtimeKit1, as its own description and README have it.
class RealtimeKit final {
    Q_DISABLE_COPY_MOVE(RealtimeKit)

public:
    explicit RealtimeKit(const QDBusConnection &bus);

    /// Asks the service to raise the thread's priority, as ThreadPriority::raise does.
    ///
    /// @returns whether the service agreed; once there turns out to be no service, false without asking again
    bool raise(const AudioThread &thread);

private:
    /// What the service grants at most.
    struct Limits {
        int realTimePriority = 0;
        int niceness = 0;
        std::chrono::microseconds longestRealTimeRun{};
    };

    bool makeRealTime(const AudioThread &thread);
    bool makeHighPriority(const AudioThread &thread);
    std::optional<Limits> askLimits();
    std::optional<qint64> property(const QString &name);
    std::optional<QVariant> ask(const QString &interface, const QString &method, const QVariantList &arguments);

    QDBusConnection m_bus;
    std::optional<Limits> m_limits;
    bool m_present = true;
};
