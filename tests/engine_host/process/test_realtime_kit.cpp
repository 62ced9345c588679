#include "engine_host/process/AudioThreadPriority.h"
#include "engine_host/process/AudioThreads.h"
#include "engine_host/process/RealtimeKit.h"
#include "engine_host/process/ThreadPriority.h"
#include "tests/engine_host/process/NamedThread.h"
#include "tests/engine_host/process/PrivateBus.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>

#include <array>
#include <linux/capability.h>

using namespace Qt::StringLiterals;

namespace {

using Work = AudioThread::Work;

/// As RealtimeKit shows itself on the bus, and as particular. It lives in the main thread: whoever made that wait for
/// an answer would get none.
class FakeRealtimeKit final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.RealtimeKit1")
    Q_PROPERTY(int MaxRealtimePriority MEMBER highestPriority)
    Q_PROPERTY(int MinNiceLevel MEMBER lowestNiceness)
    Q_PROPERTY(qlonglong RTTimeUSecMax MEMBER longestRun)

public:
    int highestPriority = 20;
    int lowestNiceness = -15;
    qlonglong longestRun = 200'000;
    bool grantsRealTime = true;
    bool grantsHighPriority = true;
    /// What was asked for, as "real-time THREAD PRIORITY" or "high THREAD NICENESS".
    QStringList asked;

public Q_SLOTS:
    // NOLINTBEGIN: the names are the bus's
    void MakeThreadRealtimeWithPID(qulonglong process, qulonglong thread, uint priority)
    {
        asked << u"real-time %1 %2"_s.arg(thread).arg(priority);
        rlimit bound{};
        prlimit(pid_t(process), RLIMIT_RTTIME, nullptr, &bound);
        if (!grantsRealTime || int(priority) > highestPriority || bound.rlim_max > rlim_t(longestRun))
            sendErrorReply(QDBusError::AccessDenied, u"Operation not permitted"_s);
    }
    void MakeThreadHighPriorityWithPID(qulonglong, qulonglong thread, int niceness)
    {
        asked << u"high %1 %2"_s.arg(thread).arg(niceness);
        if (!grantsHighPriority || niceness < lowestNiceness)
            sendErrorReply(QDBusError::AccessDenied, u"Operation not permitted"_s);
    }
    // NOLINTEND
};

/// From here on this program may not raise a thread itself, whoever started it.
bool giveUpPriority()
{
    __user_cap_header_struct header{ _LINUX_CAPABILITY_VERSION_3, 0 };
    std::array<__user_cap_data_struct, 2> rights{};
    if (syscall(SYS_capget, &header, rights.data()) != 0)
        return false;
    constexpr quint32 kept = ~(1U << CAP_SYS_NICE);
    rights[0].effective &= kept;
    rights[0].permitted &= kept;
    rights[0].inheritable &= kept;
    const rlimit none{ 0, 0 };
    return syscall(SYS_capset, &header, rights.data()) == 0 && setrlimit(RLIMIT_NICE, &none) == 0
        && setrlimit(RLIMIT_RTPRIO, &none) == 0;
}

} // namespace

/// What an ordinary user gets, whom the system permits nothing and the desktop's service may.
class TestRealtimeKit final : public QObject {
    Q_OBJECT

private:
    PrivateBus m_bus;
    std::unique_ptr<FakeRealtimeKit> m_fake;
    std::unique_ptr<QDBusConnection> m_service;
    std::unique_ptr<RealtimeKit> m_kit;

    /// The answer to a request, which the service gives while the asker waits.
    bool given(const NamedThread &thread, Work work)
    {
        bool answer = false;
        const std::unique_ptr<QThread> asker(
            QThread::create([&] { answer = m_kit->raise({ getpid(), thread.id(), work }); }));
        asker->start();
        const bool answered = QTest::qWaitFor([&] { return asker->isFinished(); });
        asker->wait();
        return answered && answer;
    }

    QDBusConnection connection(const QString &name) const
    {
        return QDBusConnection::connectToBus(m_bus.address(), name);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(!m_bus.address().isEmpty());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    }

    void init()
    {
        m_fake = std::make_unique<FakeRealtimeKit>();
        m_service = std::make_unique<QDBusConnection>(connection(u"service"_s));
        QVERIFY(m_service->registerService(u"org.freedesktop.RealtimeKit1"_s));
        QVERIFY(m_service->registerObject(u"/org/freedesktop/RealtimeKit1"_s, m_fake.get(),
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties));
        m_kit = std::make_unique<RealtimeKit>(connection(u"client"_s));
    }

    void cleanup()
    {
        m_kit.reset();
        m_service.reset();
        QDBusConnection::disconnectFromBus(u"client"_s);
        QDBusConnection::disconnectFromBus(u"service"_s);
    }

    void theSystemPermitsNothing()
    {
        const NamedThread thread("AudioOutputDevi");
        const int before = thread.niceness();
        for (const Work work : { Work::copies, Work::computes })
            QVERIFY(!ThreadPriority::raise({ getpid(), thread.id(), work }));
        QCOMPARE(thread.policy(), SCHED_OTHER);
        QCOMPARE(thread.niceness(), before);
    }

    void realTimeForWhatCopies()
    {
        const NamedThread thread("threaded-ml");
        QVERIFY(given(thread, Work::copies));
        QCOMPARE(m_fake->asked, QStringList{ u"real-time %1 5"_s.arg(thread.id()) });
    }

    void highPriorityForWhatComputes()
    {
        const NamedThread thread("Realtime AudioW");
        QVERIFY(given(thread, Work::computes));
        QCOMPARE(m_fake->asked, QStringList{ u"high %1 -10"_s.arg(thread.id()) });
    }

    void theServicesOwnLimitsAreKept()
    {
        m_fake->highestPriority = 3;
        m_fake->lowestNiceness = -7;
        m_fake->longestRun = 150'000;
        const NamedThread thread("threaded-ml");
        QVERIFY(given(thread, Work::copies));
        QVERIFY(given(thread, Work::computes));
        const QStringList expected{ u"real-time %1 3"_s.arg(thread.id()), u"high %1 -7"_s.arg(thread.id()) };
        QCOMPARE(m_fake->asked, expected);
    }

    void highPriorityWhereRealTimeIsRefused()
    {
        m_fake->grantsRealTime = false;
        const NamedThread thread("threaded-ml");
        QVERIFY(given(thread, Work::copies));
        QCOMPARE(m_fake->asked.constLast(), u"high %1 -10"_s.arg(thread.id()));
        m_fake->grantsHighPriority = false;
        QVERIFY(!given(thread, Work::copies));
    }

    void withoutTheServiceNothingIsAskedAgain()
    {
        QVERIFY(m_service->unregisterService(u"org.freedesktop.RealtimeKit1"_s));
        const NamedThread thread("threaded-ml");
        QVERIFY(!given(thread, Work::copies));
        QVERIFY(m_service->registerService(u"org.freedesktop.RealtimeKit1"_s));
        QVERIFY(!given(thread, Work::copies));
        QCOMPARE(m_fake->asked, QStringList());
    }

    void withoutABusThereIsNoService()
    {
        m_kit = std::make_unique<RealtimeKit>(QDBusConnection(u"no such bus"_s));
        const NamedThread thread("threaded-ml");
        QVERIFY(!given(thread, Work::copies));
    }

    void whileThereIsSoundNewThreadsGetTheirRightToo()
    {
        const NamedThread first("threaded-ml");
        const QString asked = u"real-time %1 5"_s;
        AudioThreadPriority priority(getpid());
        priority.setAudible(true);
        QTRY_COMPARE(m_fake->asked, QStringList{ asked.arg(first.id()) });
        const NamedThread second("AudioOutputDevi");
        QTRY_VERIFY(m_fake->asked.contains(asked.arg(second.id())));
        // Who was served before is left alone.
        QCOMPARE(m_fake->asked.size(), 2);
    }

    void asSoonAsSoundIsBackSoIsTheirRight()
    {
        AudioThreadPriority priority(getpid());
        priority.setAudible(true);
        priority.setAudible(false);
        const NamedThread thread("Realtime AudioW");
        priority.setAudible(true);
        QTRY_COMPARE(m_fake->asked, QStringList{ u"high %1 -10"_s.arg(thread.id()) });
    }

    void whoIsRefusedIsNotAskedForAgain()
    {
        m_fake->grantsHighPriority = false;
        const NamedThread refused("Realtime AudioW");
        AudioThreadPriority priority(getpid());
        priority.setAudible(true);
        QTRY_COMPARE(m_fake->asked.size(), 1);
        const NamedThread later("Realtime AudioW");
        QTRY_VERIFY(m_fake->asked.size() > 1);
        const QStringList both{ u"high %1 -10"_s.arg(refused.id()), u"high %1 -10"_s.arg(later.id()) };
        QCOMPARE(m_fake->asked, both);
    }

    void aServiceThatDoesNotAnswerHoldsUpTheEndForSecondsAtMost()
    {
        const NamedThread thread("threaded-ml");
        QElapsedTimer clock;
        {
            AudioThreadPriority priority(getpid());
            priority.setAudible(true);
            clock.start();
            // This thread is the one that would answer.
        }
        QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    }
};

int main(int argc, char *argv[])
{
    if (!giveUpPriority())
        return 1;
    const QCoreApplication application(argc, argv);
    TestRealtimeKit test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_realtime_kit.moc"
