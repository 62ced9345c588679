#include "engine_host/process/AudioThreadPriority.h"

#include "engine_host/process/AudioThreads.h"
#include "engine_host/process/RealtimeKit.h"
#include "engine_host/process/ThreadPriority.h"

#include <QSet>
#include <QTimer>

#include <chrono>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// How long a new thread may have to wait for its priority.
constexpr auto newThreadInterval = 1s;

} // namespace

/// Lives in the thread that looks.
class AudioThreadPriority::Watcher final : public QObject {
    Q_DISABLE_COPY_MOVE(Watcher)

public:
    explicit Watcher(qint64 process)
        : m_process(process)
        , m_timer(this)
    {
        connect(&m_timer, &QTimer::timeout, this, &Watcher::raiseNewThreads);
    }

    void begin()
    {
        raiseNewThreads();
        m_timer.start(newThreadInterval);
    }

    void end() { m_timer.stop(); }

private:
    void raiseNewThreads()
    {
        QSet<qint64> served;
        for (const AudioThread &thread : AudioThreads::of(m_process)) {
            // Who was refused once is refused again.
            if (!m_served.contains(thread.thread) && !ThreadPriority::raise(thread))
                realtimeKit().raise(thread);
            served << thread.thread;
        }
        m_served = served;
    }

    RealtimeKit &realtimeKit()
    {
        if (!m_realtimeKit)
            m_realtimeKit = std::make_unique<RealtimeKit>(QDBusConnection::systemBus());
        return *m_realtimeKit;
    }

    qint64 m_process;
    QTimer m_timer;
    /// The threads that need nothing more done.
    QSet<qint64> m_served;
    /// Only where the system permits nothing to the program itself.
    std::unique_ptr<RealtimeKit> m_realtimeKit;
};

AudioThreadPriority::AudioThreadPriority(qint64 process)
    : m_watcher(new Watcher(process))
{
    m_watcher->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_watcher, &QObject::deleteLater);
    m_thread.setObjectName(u"AudioPriority"_s);
    m_thread.start();
}

AudioThreadPriority::~AudioThreadPriority()
{
    m_thread.quit();
    m_thread.wait();
}

void AudioThreadPriority::setAudible(bool audible)
{
    QMetaObject::invokeMethod(m_watcher, [watcher = m_watcher, audible] {
        if (audible)
            watcher->begin();
        else
            watcher->end();
    });
}
