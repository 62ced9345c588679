#include "app/TerminationSignals.h"

#include <QTest>
#include <QTimer>

#include <csignal>

class TestTerminationSignals final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theApplicationQuits_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("terminal") << SIGINT;
        QTest::newRow("kill") << SIGTERM;
        QTest::newRow("session") << SIGHUP;
    }

    void theApplicationQuits()
    {
        QFETCH(int, number);
        int quits = 0;
        {
            const TerminationSignals watched;
            const auto counting
                = connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [&quits] { ++quits; });
            QTimer::singleShot(0, this, [number] { std::raise(number); });
            QCOMPARE(QCoreApplication::exec(), 0);
            disconnect(counting);
            QCOMPARE(quits, 1);
            QVERIFY(std::signal(number, SIG_DFL) == SIG_DFL);
        }
        QVERIFY(std::signal(number, SIG_DFL) == SIG_DFL);
    }
};

QTEST_GUILESS_MAIN(TestTerminationSignals)
#include "test_termination_signals.moc"
