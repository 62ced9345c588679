#include "engine_host/SoundPrecedence.h"

#include "engine_host/AudioThreads.h"
#include "engine_host/RealtimeKit.h"
#include "engine_host/ThreadPrecedence.h"

#include <QSet>
#include <QTimer>

#include <chrono>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// How long a new thread may have to wait for its precedence.
constexpr auto lookInterval = 1s;

} // namespace

/// Lives in the thread that looks.
class SoundPrecedence::Lookout final : public QObject {
    Q_DISABLE_COPY_MOVE(Lookout)

public:
    explicit Lookout(qint64 process)
        : m_process(process)
        , m_timer(this)
    {
        connect(&m_timer, &QTimer::timeout, this, &Lookout::look);
    }

    void begin()
    {
        look();
        m_timer.start(lookInterval);
    }

    void end() { m_timer.stop(); }

private:
    void look()
    {
        QSet<qint64> served;
        for (const AudioThread &thread : AudioThreads::of(m_process)) {
            // Who was refused once is refused again.
            if (!m_served.contains(thread.thread) && !ThreadPrecedence::give(thread))
                realtimeKit().give(thread);
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

SoundPrecedence::SoundPrecedence(qint64 process)
    : m_lookout(new Lookout(process))
{
    m_lookout->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_lookout, &QObject::deleteLater);
    m_thread.setObjectName(u"SoundPrecedence"_s);
    m_thread.start();
}

SoundPrecedence::~SoundPrecedence()
{
    m_thread.quit();
    m_thread.wait();
}

void SoundPrecedence::setAudible(bool audible)
{
    QMetaObject::invokeMethod(m_lookout, [lookout = m_lookout, audible] {
        if (audible)
            lookout->begin();
        else
            lookout->end();
    });
}
