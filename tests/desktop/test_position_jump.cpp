#include "desktop/PositionJump.h"

#include <QTest>

class TestPositionJump final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whoCountsOnIsRight()
    {
        PositionJump position;
        QVERIFY(!position.follow(1000, true, 0.5, 0));
        for (int ms = 66; ms < 60000; ms += 66)
            QVERIFY(!position.follow(1000 + ms * 0.5, true, 0.5, ms));
    }

    void aJumpIsToldOnce()
    {
        PositionJump position;
        position.follow(0, true, 1, 0);
        QVERIFY(position.follow(5000, true, 1, 66));
        QVERIFY(!position.follow(5066, true, 1, 132));
        QVERIFY(position.follow(0, true, 1, 198));
    }

    /// As a count-in does, or a player that is late each time.
    void smallDifferencesAddUp()
    {
        PositionJump position;
        position.follow(0, true, 1, 0);
        int told = 0;
        for (int ms = 100; ms <= 2000; ms += 100)
            told += position.follow(ms * 0.5, true, 1, ms);
        QCOMPARE(told, 2);
    }

    void atRestThePositionStays()
    {
        PositionJump position;
        position.follow(1000, false, 1, 0);
        QVERIFY(!position.follow(1000, false, 1, 9000));
        QVERIFY(position.follow(1100, false, 1, 9001));
    }

    void startAndSpeedAreToldByThemselves()
    {
        PositionJump position;
        position.follow(1000, false, 1, 0);
        QVERIFY(!position.follow(1000, true, 1, 5000));
        QVERIFY(!position.follow(1100, true, 1, 5100));
        QVERIFY(!position.follow(1200, true, 2, 5200));
        QVERIFY(!position.follow(1400, true, 2, 5300));
    }
};

QTEST_GUILESS_MAIN(TestPositionJump)
#include "test_position_jump.moc"
