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

using AudioServer::Presence;

class TestAudioRecovery final : public QObject {
    Q_OBJECT

private:
    /// A sound system that is looked at every millisecond.
    struct System {
        Presence server = Presence::Away;
        int looks = 0;
        int ends = 0;
        AudioRecovery recovery;

        explicit System(std::chrono::milliseconds retryDelay = 1h)
            : recovery({ [this] {
                            ++looks;
                            return server;
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
        s.server = Presence::Listening;
        QTRY_COMPARE(s.ends, 1);
        s.look();
        QCOMPARE(s.ends, 1);
    }

    void eachServerGetsANewService()
    {
        System s;
        s.server = Presence::Listening;
        s.recovery.setLost(true);
        QCOMPARE(s.ends, 1);
        s.server = Presence::Away;
        s.look();
        s.server = Presence::Listening;
        QTRY_COMPARE(s.ends, 2);
    }

    void pipeWireBehindAServerThatOutlivedItGetsANewServiceAtOnce()
    {
        System s;
        s.server = Presence::Listening;
        s.recovery.setLost(true);
        QCOMPARE(s.ends, 1);
        s.look();
        QCOMPARE(s.ends, 1);
        s.server = Presence::WithPipeWire;
        QTRY_COMPARE(s.ends, 2);
        s.look();
        s.server = Presence::Listening;
        s.look();
        QCOMPARE(s.ends, 2);
    }

    void aServiceThatFindsNothingIsTriedAgainMoreAndMoreSeldom()
    {
        System s(10ms);
        s.server = Presence::Listening;
        QElapsedTimer timer;
        timer.start();
        s.recovery.setLost(true);
        QTRY_COMPARE(s.ends, 4);
        QVERIFY(timer.elapsed() >= 10 + 20 + 40);
    }

    void theNextLossIsLookedAtAtOnce()
    {
        System s;
        s.server = Presence::Listening;
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
        const AudioServer::Sockets sockets = AudioServer::sockets(environment);
        QCOMPARE(sockets.server.first(first.size()), first);
        QCOMPARE(sockets.server.size() > first.size(), server.isEmpty());
    }

    void wherePipeWireIsLookedFor()
    {
        QProcessEnvironment environment;
        QCOMPARE(AudioServer::sockets(environment).pipeWire, QString());
        environment.insert(u"XDG_RUNTIME_DIR"_s, u"/session"_s);
        QCOMPARE(AudioServer::sockets(environment).pipeWire, u"/session/pipewire-0"_s);
        environment.insert(u"PIPEWIRE_RUNTIME_DIR"_s, u"/own"_s);
        environment.insert(u"PIPEWIRE_REMOTE"_s, u"other"_s);
        QCOMPARE(AudioServer::sockets(environment).pipeWire, u"/own/other"_s);
        environment.insert(u"PIPEWIRE_REMOTE"_s, u"/a/b"_s);
        QCOMPARE(AudioServer::sockets(environment).pipeWire, u"/a/b"_s);
    }

    void aServerIsThereWhileItListens()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"native"_s);
        const auto presence = [](const QStringList &server) { return AudioServer::presence({ server, {} }); };
        QCOMPARE(presence({ path }), Presence::Away);
        {
            QLocalServer server;
            QVERIFY(server.listen(path));
            QCOMPARE(presence({ folder.filePath(u"other"_s), path }), Presence::Listening);
        }
        QCOMPARE(presence({ path }), Presence::Away);
        // One that was killed leaves its socket behind.
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(presence({ path }), Presence::Away);
        QCOMPARE(presence({ QString(200, u'x') }), Presence::Away);
        // Of a server elsewhere nothing is known.
        QCOMPARE(presence({}), Presence::Listening);
    }

    void pipeWireAloneIsNoServer()
    {
        const QTemporaryDir folder;
        const AudioServer::Sockets sockets{ { folder.filePath(u"native"_s) }, folder.filePath(u"pipewire-0"_s) };
        QLocalServer pipeWire;
        QVERIFY(pipeWire.listen(sockets.pipeWire));
        QCOMPARE(AudioServer::presence(sockets), Presence::Away);
        QLocalServer server;
        QVERIFY(server.listen(sockets.server.first()));
        QCOMPARE(AudioServer::presence(sockets), Presence::WithPipeWire);
        pipeWire.close();
        QCOMPARE(AudioServer::presence(sockets), Presence::Listening);
        // Killed: its socket is left.
        QFile file(sockets.pipeWire);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(AudioServer::presence(sockets), Presence::Away);
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
