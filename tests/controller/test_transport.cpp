#include "controller/AlphaTabController.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

class TestTransport final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void seeking_data()
    {
        QTest::addColumn<double>("endTime");
        QTest::addColumn<double>("fraction");
        QTest::addColumn<QString>("sent");
        const double notANumber = std::numeric_limits<double>::quiet_NaN();
        const double infinite = std::numeric_limits<double>::infinity();
        QTest::newRow("no length") << 0.0 << 0.5 << QString();
        QTest::newRow("negative length") << -1.0 << 0.5 << QString();
        QTest::newRow("length not a number") << notANumber << 0.5 << QString();
        QTest::newRow("middle") << 200000.0 << 0.5 << u"window.qv.seekToTime(100000.0)"_s;
        QTest::newRow("beyond") << 200000.0 << 1.2 << u"window.qv.seekToTime(200000.0)"_s;
        QTest::newRow("before") << 200000.0 << -0.1 << u"window.qv.seekToTime(0.0)"_s;
        QTest::newRow("not a number") << 200000.0 << notANumber << u"window.qv.seekToTime(200000.0)"_s;
        QTest::newRow("infinite") << 200000.0 << infinite << u"window.qv.seekToTime(200000.0)"_s;
        QTest::newRow("start") << 200000.0 << 0.0 << u"window.qv.seekToTime(0.0)"_s;
        QTest::newRow("a third of a second") << 1000.0 << 1.0 / 3 << u"window.qv.seekToTime(333.3333333333333)"_s;
    }

    void seeking()
    {
        QFETCH(double, endTime);
        QFETCH(double, fraction);
        QFETCH(QString, sent);
        TestSurroundings world;
        AlphaTabController c(world.make());
        report(c.endTime, endTime);
        report(c.currentTime, 77);
        c.seek(fraction);
        QCOMPARE(world.engine->take(), sent.isEmpty() ? QStringList() : QStringList{ sent });
        QCOMPARE(c.currentTime.value(), 77.0);
    }
};

QTEST_GUILESS_MAIN(TestTransport)
#include "test_transport.moc"
