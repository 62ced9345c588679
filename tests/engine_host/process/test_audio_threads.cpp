#include "engine_host/process/AudioThreads.h"
#include "engine_host/process/ThreadPriority.h"
#include "tests/engine_host/process/NamedThread.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Work = AudioThread::Work;

bool systemPermitsNiceness()
{
    const NamedThread trial("trial");
    return setpriority(PRIO_PROCESS, id_t(trial.id()), -10) == 0;
}

bool systemPermitsRealTime()
{
    const NamedThread trial("trial");
    const sched_param priority{ .sched_priority = 5 };
    return sched_setscheduler(trial.id(), SCHED_RR, &priority) == 0;
}

rlimit boundOf(qint64 process)
{
    rlimit bound{};
    prlimit(pid_t(process), RLIMIT_RTTIME, nullptr, &bound);
    return bound;
}

/// A process of any name, which does nothing.
class Sleeper final {
public:
    /// A process is called like the file it was started by.
    explicit Sleeper(const QString &name)
    {
        const QString program = m_folder.filePath(name);
        QFile::link(u"/bin/sleep"_s, program);
        m_process.start(program, { u"60"_s });
        m_process.waitForStarted();
    }
    ~Sleeper()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(Sleeper)

    qint64 id() const { return m_process.processId(); }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
};

AudioThread audioThread(const NamedThread &thread, Work work) { return { getpid(), thread.id(), work }; }

} // namespace

/// The threads that sound depends on, and what the system lets the program do for them by itself.
class TestAudioThreads final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theAudioThreadsAloneAreFound_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("copies");
        QTest::newRow("the page's worklet") << QByteArray("Realtime AudioW") << false;
        QTest::newRow("Chromium's output") << QByteArray("AudioOutputDevi") << true;
        QTest::newRow("the sound system's client") << QByteArray("threaded-ml") << true;
    }

    void theAudioThreadsAloneAreFound()
    {
        QFETCH(QByteArray, name);
        const NamedThread audio(name.constData());
        const NamedThread drawing("CompositorTileW");
        const QList<AudioThread> found = AudioThreads::of(getpid());
        QCOMPARE(found.size(), 1);
        QCOMPARE(found[0].process, qint64(getpid()));
        QCOMPARE(found[0].thread, qint64(audio.id()));
        QTEST(found[0].work == Work::copies, "copies");
    }

    void thoseOfStartedProcessesAreToo()
    {
        const Sleeper sleeper(u"threaded-ml"_s);
        const QList<AudioThread> found = AudioThreads::of(getpid());
        QCOMPARE(found.size(), 1);
        QCOMPARE(found[0].process, sleeper.id());
        QCOMPARE(found[0].thread, sleeper.id());
    }

    void aProcessThatIsGoneHasNone() { QVERIFY(AudioThreads::of(-1).isEmpty()); }

    void whatCopiesBecomesRealTimeWhereThatIsPermitted()
    {
        const NamedThread copying("AudioOutputDevi");
        const NamedThread other("AudioOutputDevi");
        const bool given = ThreadPriority::raise(audioThread(copying, Work::copies));
        QCOMPARE(given, systemPermitsRealTime() || systemPermitsNiceness());
        if (systemPermitsRealTime()) {
            // Threads that it starts are usual ones, and one that ran away would be ended.
            QCOMPARE(copying.policy(), SCHED_RR | SCHED_RESET_ON_FORK);
            QCOMPARE(boundOf(getpid()).rlim_max, rlim_t(200'000));
            QCOMPARE(boundOf(getpid()).rlim_cur, rlim_t(200'000));
        } else {
            QCOMPARE(copying.policy(), SCHED_OTHER);
            QCOMPARE(copying.niceness(), systemPermitsNiceness() ? -10 : other.niceness());
        }
        QCOMPARE(other.policy(), SCHED_OTHER);
    }

    void whatComputesIsNeverRealTime()
    {
        const NamedThread computing("Realtime AudioW");
        const NamedThread other("Realtime AudioW");
        QCOMPARE(ThreadPriority::raise(audioThread(computing, Work::computes)), systemPermitsNiceness());
        QCOMPARE(computing.policy(), SCHED_OTHER);
        QCOMPARE(computing.niceness(), systemPermitsNiceness() ? -10 : other.niceness());
    }

    void aThreadThatIsGoneGetsNothing()
    {
        AudioThread gone;
        {
            const NamedThread thread("AudioOutputDevi");
            gone = audioThread(thread, Work::copies);
        }
        QVERIFY(!ThreadPriority::raise(gone));
    }

    void aLowerBoundStays()
    {
        const Sleeper sleeper(u"sleep"_s);
        QVERIFY(ThreadPriority::boundRealTime(sleeper.id(), 50ms));
        QVERIFY(ThreadPriority::boundRealTime(sleeper.id(), 200ms));
        QCOMPARE(boundOf(sleeper.id()).rlim_max, rlim_t(50'000));
        QCOMPARE(boundOf(sleeper.id()).rlim_cur, rlim_t(50'000));
        QVERIFY(!ThreadPriority::boundRealTime(-1, 200ms));
    }
};

QTEST_GUILESS_MAIN(TestAudioThreads)
#include "test_audio_threads.moc"
