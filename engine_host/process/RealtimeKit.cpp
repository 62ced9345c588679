#include "engine_host/process/RealtimeKit.h"

#include "engine_host/process/AudioThreads.h"
#include "engine_host/process/ThreadPriority.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QLoggingCategory>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(category, "quaverly.realtimekit", QtWarningMsg)

QString service() { return u"org.freedesktop.RealtimeKit1"_s; }

/// The service answers within milliseconds; the first call may have to wait until it is started.
constexpr int replyTimeoutMs = 2000;

} // namespace

RealtimeKit::RealtimeKit(const QDBusConnection &bus)
    : m_bus(bus)
{
}

bool RealtimeKit::raise(const AudioThread &thread)
{
    if (m_present && !m_limits) {
        m_limits = askLimits();
        m_present = m_limits.has_value();
    }
    return m_present
        && ((thread.work == AudioThread::Work::copies && makeRealTime(thread)) || makeHighPriority(thread));
}

bool RealtimeKit::makeRealTime(const AudioThread &thread)
{
    // The service refuses who could run away.
    const auto longestRun = std::min(ThreadPriority::longestRealTimeRun, m_limits->longestRealTimeRun);
    const int priority = std::min(ThreadPriority::realTimePriority, m_limits->realTimePriority);
    return ThreadPriority::boundRealTime(thread.process, longestRun)
        && ask(service(), u"MakeThreadRealtimeWithPID"_s,
            { quint64(thread.process), quint64(thread.thread), quint32(priority) });
}

bool RealtimeKit::makeHighPriority(const AudioThread &thread)
{
    const qint32 niceness = std::max(ThreadPriority::niceness, m_limits->niceness);
    return ask(
        service(), u"MakeThreadHighPriorityWithPID"_s, { quint64(thread.process), quint64(thread.thread), niceness })
        .has_value();
}

std::optional<RealtimeKit::Limits> RealtimeKit::askLimits()
{
    const auto priority = property(u"MaxRealtimePriority"_s);
    const auto niceness = priority ? property(u"MinNiceLevel"_s) : std::nullopt;
    const auto longestRun = niceness ? property(u"RTTimeUSecMax"_s) : std::nullopt;
    if (!longestRun)
        return std::nullopt;
    return Limits{ int(*priority), int(*niceness), std::chrono::microseconds(*longestRun) };
}

std::optional<qint64> RealtimeKit::property(const QString &name)
{
    const auto answer = ask(u"org.freedesktop.DBus.Properties"_s, u"Get"_s, { service(), name });
    bool isNumber = false;
    const qint64 number = answer ? answer->value<QDBusVariant>().variant().toLongLong(&isNumber) : 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<QVariant> RealtimeKit::ask(const QString &interface, const QString &method, const QVariantList &arguments)
{
    QDBusMessage call
        = QDBusMessage::createMethodCall(service(), u"/org/freedesktop/RealtimeKit1"_s, interface, method);
    call.setArguments(arguments);
    const QDBusMessage answer = m_bus.call(call, QDBus::Block, replyTimeoutMs);
    if (answer.type() != QDBusMessage::ReplyMessage) {
        qCDebug(category) << method << "refused:" << answer.errorMessage();
        return std::nullopt;
    }
    return answer.arguments().value(0);
}
