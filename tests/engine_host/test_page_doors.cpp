#include "engine_host/bridge/ScriptEvaluation.h"
#include "engine_host/process/ChromiumSwitches.h"
#include "engine_host/process/DrawingBackend.h"
#include "engine_host/process/HeapLimits.h"
#include "engine_host/process/RootSandbox.h"
#include "engine_host/serving/RequestInterceptor.h"
#include "engine_host/serving/WebFolder.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;

class TestPageDoors final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requests_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("page") << u"qv-app://app/index.html"_s << true;
        QTest::newRow("blob") << u"blob:qv-app://app/7f"_s << true;
        QTest::newRow("data") << u"data:text/plain,x"_s << true;
        QTest::newRow("web") << u"https://example.org/x.js"_s << false;
        QTest::newRow("plain web") << u"http://127.0.0.1/"_s << false;
        QTest::newRow("socket") << u"wss://example.org/"_s << false;
        QTest::newRow("file") << u"file:///etc/passwd"_s << false;
        QTest::newRow("file system") << u"filesystem:qv-app://app/x"_s << false;
        QTest::newRow("look-alike") << u"qv-apps://app/"_s << false;
        QTest::newRow("none") << QString() << false;
    }

    void requests()
    {
        QFETCH(QString, address);
        QTEST(RequestInterceptor::allows(QUrl(address)), "allowed");
    }

    void onlyRootLosesTheSandbox()
    {
        QCOMPARE(RootSandbox::flagsFor(false, {}), QByteArray());
        QCOMPARE(RootSandbox::flagsFor(false, "--mute-audio"), QByteArray("--mute-audio"));
        QCOMPARE(RootSandbox::flagsFor(true, {}), QByteArray("--no-sandbox"));
        QCOMPARE(RootSandbox::flagsFor(true, "--mute-audio"), QByteArray("--mute-audio --no-sandbox"));
        QCOMPARE(RootSandbox::flagsFor(true, "--no-sandbox --mute-audio"), QByteArray("--no-sandbox --mute-audio"));
    }

    void theEngineIsStartedWithWhatThePageNeeds()
    {
        const QByteArray features = "--enable-features=SharedArrayBuffer,RunVideoCaptureServiceInBrowserProcess";
        const QByteArray script = "--js-flags=--expose-gc,--no-memory-reducer";
        const QByteArray walls
            = " --force-webrtc-ip-handling-policy=disable_non_proxied_udp --proxy-server=127.0.0.1:9 "
              "--proxy-bypass-list=<-loopback> --disable-features=HardwareMediaKeyHandling --no-unsandboxed-zygote";
        QCOMPARE(ChromiumSwitches::flagsFor({}), features + ' ' + script + walls);
        QCOMPARE(ChromiumSwitches::flagsFor("--mute-audio"), "--mute-audio " + features + ' ' + script + walls);
        QCOMPARE(ChromiumSwitches::flagsFor(features + ' ' + script), features + ' ' + script + walls);
        QCOMPARE(
            ChromiumSwitches::flagsFor("--proxy-server=proxy:8080 " + features + ' ' + script).count("--proxy-server"),
            1);
        QCOMPARE(ChromiumSwitches::flagsFor("--enable-features=A,B --js-flags=--trace-gc --mute-audio"),
            QByteArray("--enable-features=A,B,SharedArrayBuffer,RunVideoCaptureServiceInBrowserProcess "
                       "--js-flags=--trace-gc,--expose-gc,--no-memory-reducer --mute-audio")
                + walls);
        QCOMPARE(ChromiumSwitches::flagsFor("--enable-features=A --enable-features=B " + script),
            "--enable-features=A --enable-features=B,SharedArrayBuffer,RunVideoCaptureServiceInBrowserProcess " + script
                + walls);
    }

    void theEnginesProcessesGiveBackWhatTheyFree()
    {
        const QProcessEnvironment plain = HeapLimits::limited({});
        QCOMPARE(plain.value(u"MALLOC_ARENA_MAX"_s), u"2"_s);
        QCOMPARE(plain.value(u"MALLOC_TRIM_THRESHOLD_"_s), u"131072"_s);
        QCOMPARE(plain.value(u"MALLOC_MMAP_THRESHOLD_"_s), u"131072"_s);
        QProcessEnvironment own;
        own.insert(u"MALLOC_ARENA_MAX"_s, u"1"_s);
        own.insert(u"MALLOC_MMAP_THRESHOLD_"_s, u"65536"_s);
        QCOMPARE(HeapLimits::limited(own).value(u"MALLOC_ARENA_MAX"_s), u"1"_s);
        QCOMPARE(HeapLimits::limited(own).value(u"MALLOC_MMAP_THRESHOLD_"_s), u"65536"_s);
        QCOMPARE(HeapLimits::limited(own).value(u"MALLOC_TRIM_THRESHOLD_"_s), u"131072"_s);
    }

    void theProcessorDrawsWhereThereIsNoGraphicsCard()
    {
        const QTemporaryDir folder;
        const QDir devices(folder.path());
        QVERIFY(!DrawingBackend::hasGraphicsCard(devices.path()));
        QVERIFY(devices.mkpath(u"dri/card0"_s));
        QVERIFY(!DrawingBackend::hasGraphicsCard(devices.path()));
        QVERIFY(devices.mkpath(u"dri/renderD128"_s));
        QVERIFY(DrawingBackend::hasGraphicsCard(devices.path()));
        const QTemporaryDir other;
        QVERIFY(QDir(other.path()).mkpath(u"nvidiactl"_s));
        QVERIFY(DrawingBackend::hasGraphicsCard(other.path()));

        QCOMPARE(DrawingBackend::nameFor(true, {}), QByteArray());
        QCOMPARE(DrawingBackend::nameFor(false, {}), QByteArray("software"));
        QCOMPARE(DrawingBackend::nameFor(false, "rhi"), QByteArray("rhi"));
        QCOMPARE(DrawingBackend::integrationFor("software", {}), QByteArray("none"));
        QCOMPARE(DrawingBackend::integrationFor("software", "xcb_egl"), QByteArray("xcb_egl"));
        QCOMPARE(DrawingBackend::integrationFor("rhi", {}), QByteArray());
        QCOMPARE(DrawingBackend::integrationFor({}, {}), QByteArray());
    }

    void anEvaluationTellsWhyItFailed()
    {
        QCOMPARE(ScriptEvaluation::errorOf(true), std::nullopt);
        QCOMPARE(ScriptEvaluation::errorOf(QVariantMap{ { u"error"_s, u"TypeError: x"_s } }), u"TypeError: x"_s);
        QVERIFY(ScriptEvaluation::errorOf(QVariant()));
        QCOMPARE(ScriptEvaluation::errorOf(QVariant(), u"SyntaxError: x"_s), u"SyntaxError: x"_s);
        const auto syntaxError = [](const QString &line, const QString &source) {
            return ScriptEvaluation::syntaxErrorOf(line, source).value_or(u"none"_s);
        };
        QCOMPARE(
            syntaxError(u"Uncaught SyntaxError: Unexpected token"_s, u"qv-call"_s), u"SyntaxError: Unexpected token"_s);
        QCOMPARE(syntaxError(u"Uncaught SyntaxError: Unexpected token"_s, u"qv-app://app/src/main.js"_s), u"none"_s);
        QCOMPARE(syntaxError(u"Uncaught TypeError: x"_s, u"qv-call"_s), u"none"_s);
    }

    void theWebFolderIsFoundBesideABuildAndWhenInstalled()
    {
        const QTemporaryDir folder;
        const QDir top(folder.path());
        QVERIFY(top.mkpath(u"prefix/bin"_s));
        const QString bin = top.filePath(u"prefix/bin"_s);
        QCOMPARE(WebFolder::find(bin), std::nullopt);
        QVERIFY(top.mkpath(u"prefix/share/quaverly/web"_s));
        QCOMPARE(WebFolder::find(bin), top.filePath(u"prefix/share/quaverly/web"_s));
        QVERIFY(top.mkpath(u"prefix/bin/web"_s));
        QCOMPARE(WebFolder::find(bin), top.filePath(u"prefix/bin/web"_s));
    }
};

QTEST_GUILESS_MAIN(TestPageDoors)
#include "test_page_doors.moc"
