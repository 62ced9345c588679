#include "engine_host/process/AudioRecovery.h"
#include "engine_host/process/AudioServer.h"
#include "engine_host/process/AudioService.h"

#include <QCoreApplication>
#include <QLocalServer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TestAudioRecovery final : public QObject {
    Q_OBJECT

private:
    /// A sound system that is looked at every millisecond.
    struct System {
        bool reachable = false;
        int looks = 0;
        int ends = 0;
        AudioRecovery recovery;

        explicit System(std::chrono::milliseconds retryDelay = 1h)
            : recovery({ [this] {
                            ++looks;
                            return reachable;
                        },
                           [this] { ++ends; } },
                  { .interval = 1ms, .firstRetryDelay = retryDelay, .lastRetryDelay = 1h })
        {
        }
        void look()
        {
            const int before = looks;
            QTRY_VERIFY(looks > before + 1);
        }
    };

private Q_SLOTS:
    void whileThePageHasItsOutputNobodyLooks()
    {
        System s;
        QTest::qWait(20);
        s.recovery.setLost(true);
        s.recovery.setLost(false);
        const int before = s.looks;
        QTest::qWait(20);
        QCOMPARE(s.looks, before);
        QCOMPARE(s.ends, 0);
    }

    void theServiceEndsOnceWhenTheServerIsBack()
    {
        System s;
        s.recovery.setLost(true);
        s.look();
        QCOMPARE(s.ends, 0);
        s.reachable = true;
        QTRY_COMPARE(s.ends, 1);
        s.look();
        QCOMPARE(s.ends, 1);
    }

    void eachServerGetsANewService()
    {
        System s;
        s.reachable = true;
        s.recovery.setLost(true);
        QCOMPARE(s.ends, 1);
        s.reachable = false;
        s.look();
        s.reachable = true;
        QTRY_COMPARE(s.ends, 2);
    }

    void aServiceThatFindsNothingIsTriedAgainMoreAndMoreSeldom()
    {
        System s(10ms);
        s.reachable = true;
        QElapsedTimer timer;
        timer.start();
        s.recovery.setLost(true);
        QTRY_COMPARE(s.ends, 4);
        QVERIFY(timer.elapsed() >= 10 + 20 + 40);
    }

    void theNextLossIsLookedAtAtOnce()
    {
        System s;
        s.reachable = true;
        s.recovery.setLost(true);
        s.recovery.setLost(true);
        QCOMPARE(s.ends, 1);
        s.recovery.setLost(false);
        s.recovery.setLost(true);
        QCOMPARE(s.ends, 2);
    }

    void whereTheServerIsLookedFor_data()
    {
        QTest::addColumn<QString>("server");
        QTest::addColumn<QStringList>("first");
        QTest::newRow("of the session") << QString() << QStringList{ u"/own/native"_s, u"/session/pulse/native"_s };
        QTest::newRow("a path") << u"/a/b"_s << QStringList{ u"/a/b"_s };
        QTest::newRow("unix") << u"unix:/a/b"_s << QStringList{ u"/a/b"_s };
        QTest::newRow("two, one for a machine") << u"{machine}unix:/a/b /c"_s << QStringList{ u"/a/b"_s, u"/c"_s };
        QTest::newRow("on another machine") << u"tcp:studio:4713"_s << QStringList{};
    }

    void whereTheServerIsLookedFor()
    {
        QFETCH(QString, server);
        QFETCH(QStringList, first);
        QProcessEnvironment environment;
        environment.insert(u"PULSE_SERVER"_s, server);
        environment.insert(u"PULSE_RUNTIME_PATH"_s, u"/own"_s);
        environment.insert(u"XDG_RUNTIME_DIR"_s, u"/session"_s);
        const QStringList paths = AudioServer::socketPaths(environment);
        QCOMPARE(paths.first(first.size()), first);
        QCOMPARE(paths.size() > first.size(), server.isEmpty());
    }

    void aServerIsThereWhileItListens()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"native"_s);
        QVERIFY(!AudioServer::isReachable({ path }));
        {
            QLocalServer server;
            QVERIFY(server.listen(path));
            QVERIFY(AudioServer::isReachable({ folder.filePath(u"other"_s), path }));
        }
        QVERIFY(!AudioServer::isReachable({ path }));
        // One that was killed leaves its socket behind.
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(!AudioServer::isReachable({ path }));
        QVERIFY(!AudioServer::isReachable({ QString(200, u'x') }));
        // Of a server elsewhere nothing is known.
        QVERIFY(AudioServer::isReachable({}));
    }

    void theServiceIsFoundAndEnded()
    {
        const qint64 self = QCoreApplication::applicationPid();
        QCOMPARE(AudioService::of(self), 0);
        QProcess service;
        service.start(
            u"/bin/sh"_s, { u"-c"_s, u"echo ready; read line"_s, u"--utility-sub-type=audio.mojom.AudioService"_s });
        QVERIFY(service.waitForReadyRead());
        QCOMPARE(AudioService::of(self), service.processId());
        AudioService::end(self);
        QVERIFY(service.waitForFinished());
        QCOMPARE(service.exitStatus(), QProcess::CrashExit);
        QCOMPARE(AudioService::of(self), 0);
    }
};

QTEST_GUILESS_MAIN(TestAudioRecovery)
#include "test_audio_recovery.moc"
