#include "app/LastResort.h"

#include <QElapsedTimer>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

class TestLastResort final : public QObject {
    Q_OBJECT

private:
    /// How a process ends that does `work` and then hangs for four seconds.
    template <typename Work> static int statusOf(const Work &work)
    {
        const pid_t child = ::fork();
        if (child == 0) {
            work();
            for (int i = 0; i < 4; ++i)
                ::sleep(1);
            ::_exit(42);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private Q_SLOTS:
    void aProgramThatHangsAtItsEnd()
    {
        QElapsedTimer timer;
        timer.start();
        const int status = statusOf([] {
            LastResort::prepare();
            LastResort::arm();
            LastResort::arm();
        });
        QCOMPARE(status, 1);
        QVERIFY2(timer.elapsed() >= LastResort::endingTimeoutMs, qPrintable(QString::number(timer.elapsed())));
    }

    void withoutPreparationNothingHappens()
    {
        QCOMPARE(statusOf([] { LastResort::arm(); }), 42);
    }
};

QTEST_APPLESS_MAIN(TestLastResort)
#include "test_last_resort.moc"
