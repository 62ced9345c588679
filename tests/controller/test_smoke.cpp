#include "controller/AlphaTabController.h"
#include "tests/support/TestSurroundings.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

std::optional<QByteArray> contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? std::optional(file.readAll()) : std::nullopt;
}

const QVariantMap ready{ { u"type"_s, u"ready"_s } };
const QVariantMap rendered{ { u"type"_s, u"rendered"_s } };

} // namespace

class TestSmoke final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void switchedOn_data()
    {
        QTest::addColumn<QString>("variable");
        QTest::addColumn<bool>("marker");
        QTest::addColumn<bool>("on");
        QTest::newRow("neither") << QString() << false << false;
        QTest::newRow("variable") << u"1"_s << false << true;
        QTest::newRow("other value") << u"true"_s << false << false;
        QTest::newRow("blank after it") << u"1 "_s << false << false;
        QTest::newRow("marker") << QString() << true << true;
        QTest::newRow("marker despite 0") << u"0"_s << true << true;
    }

    void switchedOn()
    {
        QFETCH(QString, variable);
        QFETCH(bool, marker);
        QFETCH(bool, on);
        TestSurroundings world;
        if (!variable.isNull())
            world.environment.insert(u"QV_SMOKE"_s, variable);
        if (marker)
            QVERIFY(QDir().mkdir(world.path(u"qv_smoke"_s)));
        AlphaTabController c(world.make());
        QCOMPARE(contents(world.path(u"qv_smoke.log"_s)), on ? std::optional(QByteArray()) : std::nullopt);
        world.engine->take();
        c.handle(ready);
        QCOMPARE(world.engine->scripts.contains(u"window.qv.loadSample()"_s), on);
    }

    void theLogHoldsOneRun()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        {
            AlphaTabController c(world.make());
            c.handle(ready);
            c.handle({ { u"type"_s, u"Ready"_s } });
            c.handle({ { u"typ"_s, u"none"_s } });
            QCOMPARE(
                contents(world.path(u"qv_smoke.log"_s)), QByteArray("[\"type\": \"ready\"]\n[\"type\": \"Ready\"]\n"));
            QCOMPARE(*world.log,
                (QStringList{ u"[Quaverly] msg [\"type\": \"ready\"]"_s, u"[Quaverly] msg [\"type\": \"Ready\"]"_s }));
        }
        const AlphaTabController second(world.make());
        QCOMPARE(contents(world.path(u"qv_smoke.log"_s)), QByteArray());
    }

    void aLogThatVanishedIsMadeAgain()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        AlphaTabController c(world.make());
        QVERIFY(QFile::remove(world.path(u"qv_smoke.log"_s)));
        c.handle(ready);
        QCOMPARE(contents(world.path(u"qv_smoke.log"_s)), QByteArray("[\"type\": \"ready\"]\n"));
    }

    void theLogGoesWhereTheVariableSays()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        world.environment.insert(u"QV_LOGFILE"_s, world.path(u"other.log"_s));
        AlphaTabController c(world.make());
        c.handle(ready);
        QCOMPARE(contents(world.path(u"other.log"_s)), QByteArray("[\"type\": \"ready\"]\n"));
        QVERIFY(!QFile::exists(world.path(u"qv_smoke.log"_s)));
    }

    void anUnwritableLogStopsNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing folder") << u"missing/x.log"_s;
        QTest::newRow("empty name") << QString(u""_s);
    }

    void anUnwritableLogStopsNothing()
    {
        QFETCH(QString, name);
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        world.environment.insert(u"QV_LOGFILE"_s, name.isEmpty() ? name : world.path(name));
        AlphaTabController c(world.make());
        c.handle(ready);
        QVERIFY(c.bridgeReady);
        QVERIFY(!QFile::exists(world.path(u"qv_smoke.log"_s)));
        QCOMPARE(world.log->size(), 1);
    }

    void oneScreenshotASecondAfterTheFirstRendering()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        world.engine->picture = QImage(4, 3, QImage::Format_RGB32);
        world.engine->picture.fill(Qt::red);
        AlphaTabController c(world.make());
        c.handle(rendered);
        c.handle(rendered);
        QCOMPARE(world.delayed->size(), 1);
        QVERIFY(world.delayed->constFirst().delay == 1000ms);
        QCOMPARE(world.engine->snapshots, 0);
        world.delayed->constFirst().work();
        c.handle(rendered);
        QCOMPARE(world.delayed->size(), 1);
        QCOMPARE(world.engine->snapshots, 1);
        QCOMPARE(QImage(world.path(u"qv_smoke.png"_s)).size(), QSize(4, 3));
        QVERIFY(world.log->contains(u"[Quaverly] snapshot written to "_s + world.path(u"qv_smoke.png"_s)));
    }

    void theLineIsLoggedAlsoWhenTheWriteFailed()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        world.environment.insert(u"QV_SHOT"_s, world.path(u"missing/x.png"_s));
        world.engine->picture = QImage(4, 3, QImage::Format_RGB32);
        AlphaTabController c(world.make());
        c.handle(rendered);
        world.delayed->constFirst().work();
        QVERIFY(world.log->contains(u"[Quaverly] snapshot written to "_s + world.path(u"missing/x.png"_s)));
    }

    void withoutAPictureNothingIsSaidAndThereIsNoSecondAttempt()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_SMOKE"_s, u"1"_s);
        AlphaTabController c(world.make());
        c.handle(rendered);
        world.log->clear();
        world.delayed->constFirst().work();
        QVERIFY(world.log->isEmpty());
        c.handle(rendered);
        QCOMPARE(world.delayed->size(), 1);
        QVERIFY(!QFile::exists(world.path(u"qv_smoke.png"_s)));
    }

    void withoutSmokeModeThereAreNoFiles()
    {
        TestSurroundings world;
        world.environment.insert(u"QV_LOGFILE"_s, world.path(u"x.log"_s));
        AlphaTabController c(world.make());
        c.handle(ready);
        c.handle(rendered);
        QVERIFY(world.delayed->isEmpty());
        QVERIFY(world.log->isEmpty());
        QCOMPARE(QDir(world.path({})).entryList(QDir::Files), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestSmoke)
#include "test_smoke.moc"
