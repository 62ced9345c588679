#include "engine_host/AudioThreads.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <condition_variable>
#include <mutex>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// A thread of that name that does nothing until the end.
class NamedThread final {
    Q_DISABLE_COPY_MOVE(NamedThread)

public:
    explicit NamedThread(const char *name)
        : m_thread([this, name] {
            pthread_setname_np(pthread_self(), name);
            std::unique_lock lock(m_mutex);
            m_id = int(syscall(SYS_gettid));
            m_changed.notify_all();
            m_changed.wait(lock, [this] { return m_done; });
        })
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_id != 0; });
    }

    ~NamedThread()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_done = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }

    int id() const { return m_id; }
    int niceness() const { return getpriority(PRIO_PROCESS, id_t(m_id)); }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_id = 0;
    bool m_done = false;
    std::thread m_thread;
};

bool systemPermits()
{
    const NamedThread trial("trial");
    return setpriority(PRIO_PROCESS, id_t(trial.id()), -10) == 0;
}

} // namespace

class TestAudioThreads final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theAudioThreadsAloneAreRaised()
    {
        const NamedThread audio("Realtime AudioW");
        const NamedThread drawing("CompositorTileW");
        const int before = drawing.niceness();
        const int raised = AudioThreads::raise(getpid());
        QCOMPARE(raised, systemPermits() ? 1 : 0);
        QCOMPARE(audio.niceness(), systemPermits() ? -10 : before);
        QCOMPARE(drawing.niceness(), before);
        QCOMPARE(getpriority(PRIO_PROCESS, id_t(getpid())), before);
    }

    void thoseOfStartedProcessesAreToo()
    {
        // A process is called like the file it was started by.
        const QTemporaryDir folder;
        const QString program = folder.filePath(u"threaded-ml"_s);
        QVERIFY(QFile::link(u"/bin/sleep"_s, program));
        QProcess process;
        process.start(program, { u"60"_s });
        QVERIFY(process.waitForStarted());
        const auto before = getpriority(PRIO_PROCESS, id_t(process.processId()));
        AudioThreads::raise(getpid());
        QCOMPARE(getpriority(PRIO_PROCESS, id_t(process.processId())), systemPermits() ? -10 : before);
        process.kill();
        QVERIFY(process.waitForFinished());
    }

    void aProcessThatIsGoneIsNone() { QCOMPARE(AudioThreads::raise(-1), 0); }
};

QTEST_GUILESS_MAIN(TestAudioThreads)
#include "test_audio_threads.moc"
