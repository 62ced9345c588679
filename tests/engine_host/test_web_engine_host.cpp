#include "engine_host/AlphaTabWebView.h"
#include "engine_host/EnginePage.h"
#include "engine_host/EngineView.h"
#include "engine_host/PageAccessible.h"
#include "engine_host/WebEngineHost.h"
#include "engine_host/bridge/MessageReceiver.h"
#include "engine_host/bridge/ScriptHandler.h"
#include "engine_host/process/RunningProcess.h"
#include "engine_host/serving/WebSchemeHandler.h"
#include "tests/support/EngineTestMain.h"

#include <QAccessible>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QMenu>
#include <QPushButton>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QUdpSocket>
#include <QVBoxLayout>
#include <QWebEngineHistory>

using namespace Qt::StringLiterals;

namespace {

class Inbox final : public MessageReceiver {
public:
    void handle(const QVariantMap &message) override { messages << message; }
    void pageHealthChanged(PageHealth health) override { healths << health; }
    QList<QVariantMap> messages;
    QList<PageHealth> healths;
};

constexpr char pageText[] = R"(<!doctype html><meta charset="utf-8"><title>host test</title>
<style>html { background: rgb(10, 200, 30) }</style>
<script src="qwebchannel.js"></script>
<script>
new QWebChannel(qt.webChannelTransport, channel => {
  window.post = body => channel.objects.qv.postMessage(body);
  post({ type: "ready", name: "Grüße 谱" });
});
</script>)";

} // namespace

class TestWebEngineHost final : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QStringList m_log;
    QStringList m_consoleErrors;
    Inbox m_inbox;
    std::unique_ptr<ScriptHandler> m_handler;
    std::unique_ptr<WebEngineHost> m_host;

    void put(const QString &name, const QByteArray &bytes)
    {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    /// What an evaluation reports: an error's text, or "fine".
    QString errorOrFine(const QString &script)
    {
        std::optional<QString> result;
        m_host->evaluate(script, [&result](const auto &error) { result = error.value_or(u"fine"_s); });
        return QTest::qWaitFor([&result] { return result.has_value(); }) ? *result : u"no answer"_s;
    }

    /// The value that a promise-valued expression of the page settles with.
    QVariant settled(const QString &expression)
    {
        const qsizetype before = m_inbox.messages.size();
        const QString script = u"Promise.resolve().then(() => (%1)).then("
                               "v => post({ type: 'settled', value: v }), "
                               "e => post({ type: 'settled', value: 'rejected: ' + e.name }))"_s.arg(expression);
        m_host->evaluate(script, [](const auto &) { });
        if (!QTest::qWaitFor([&] { return m_inbox.messages.size() > before; }))
            return u"no answer"_s;
        return m_inbox.messages.constLast().value(u"value"_s);
    }

private Q_SLOTS:
    void initTestCase()
    {
        put(u"index.html"_s, pageText);
        put(u"data.json"_s, "{}");
        QVERIFY(QFile::copy(u":/qtwebchannel/qwebchannel.js"_s, m_folder.filePath(u"qwebchannel.js"_s)));
        m_handler = std::make_unique<ScriptHandler>([this](const QString &line) { m_log << line; });
        m_handler->setController(&m_inbox);
        m_host = std::make_unique<WebEngineHost>(*m_handler, m_folder.path());
        connect(m_host->page(), &EnginePage::consoleError, this, [this](const QString &e) { m_consoleErrors << e; });
        QVERIFY(m_host->schemeHandler());
        m_host->view()->resize(300, 200);
        m_host->view()->show();
        m_host->load(QUrl(u"qv-app://app/index.html"_s));
        QTRY_COMPARE_WITH_TIMEOUT(m_inbox.messages.size(), 1, 30000);
        QCOMPARE(m_inbox.messages.constFirst().value(u"name"_s), u"Grüße 谱"_s);
        QVERIFY(m_consoleErrors.isEmpty());
    }

    void cleanupTestCase()
    {
        QVERIFY2(m_log.isEmpty(), qPrintable(m_log.join(u'\n')));
        // When the application is about to quit the page goes first. Who asks for something then gets an answer.
        QVERIFY(QMetaObject::invokeMethod(qApp, "aboutToQuit"));
        QVERIFY(!m_host->page());
        bool pictured = false;
        m_host->snapshot([&pictured](const QImage &image) { pictured = image.isNull(); });
        QVERIFY(pictured);
        QVERIFY(errorOrFine(u"1 + 1"_s) != u"fine"_s);
        m_host->load(QUrl(u"qv-app://app/index.html"_s));
        m_host.reset();
    }

    void onlyDictionariesArrive()
    {
        m_inbox.messages.clear();
        QCOMPARE(
            errorOrFine(u"post('ready'); post(4); post([1]); post(null); post({ type: 'last', n: 1.5, yes: true })"_s),
            u"fine"_s);
        QTRY_COMPARE(m_inbox.messages.size(), 1);
        const QVariantMap message = m_inbox.messages.constFirst();
        QCOMPARE(message.value(u"type"_s), u"last"_s);
        QCOMPARE(message.value(u"n"_s).toDouble(), 1.5);
        QCOMPARE(message.value(u"yes"_s), QVariant(true));
    }

    void anEvaluationReportsItsError()
    {
        QCOMPARE(errorOrFine(u"1 + 1"_s), u"fine"_s);
        QCOMPARE(errorOrFine(u"undefined"_s), u"fine"_s);
        QCOMPARE(errorOrFine(u"1 // a comment"_s), u"fine"_s);
        QCOMPARE(errorOrFine(u"window.nobody.call()"_s).left(11), u"TypeError: "_s);
        QCOMPARE(errorOrFine(u"throw new Error('no')"_s), u"Error: no"_s);
        // The next script is no worse for it.
        for (int round = 0; round < 2; ++round) {
            const QString error = errorOrFine(u"window.qv.load('it's')"_s);
            QVERIFY2(error.startsWith("SyntaxError: missing )"_L1), qPrintable(error));
            QCOMPARE(errorOrFine(u"1 + 1"_s), u"fine"_s);
        }
        // Its caller is told, and nobody else.
        QCOMPARE(m_consoleErrors, QStringList());
    }

    void aLongTextArrivesWhole()
    {
        const QString text = u"AbC+/9zZ"_s.repeated(1 << 18) + u"AA=="_s;
        QCOMPARE(errorOrFine(u"globalThis.take = text => { globalThis.taken = text; }"_s), u"fine"_s);
        QCOMPARE(errorOrFine(u"take('"_s + text + u"')"_s), u"fine"_s);
        QCOMPARE(settled(u"taken.length"_s).toDouble(), double(text.size()));
        QCOMPARE(settled(u"taken === 'AbC+/9zZ'.repeat(1 << 18) + 'AA=='"_s), QVariant(true));
        QCOMPARE(errorOrFine(u"throw new Error('"_s + text + u"'.slice(-4))"_s), u"Error: AA=="_s);
        // What means something else between quotes than elsewhere comes as it is, too.
        QCOMPARE(errorOrFine(u"take('"_s + text + u"*/\\n"_s + text + u"')"_s), u"fine"_s);
        QCOMPARE(settled(u"taken.slice(-8)"_s), u"AbC+/9zZAA=="_s.right(8));
        QCOMPARE(settled(u"taken.indexOf('*/\\n')"_s).toDouble(), double(text.size()));
    }

    void soundNeedsNoGesture()
    {
        QCOMPARE(settled(u"isSecureContext && typeof AudioWorkletNode"_s), u"function"_s);
        QCOMPARE(settled(u"(async () => { const c = new AudioContext(); await c.resume(); return c.state })()"_s),
            u"running"_s);
    }

    void noProcessLooksForCamerasWhenOutputsAreAskedFor()
    {
        // Chromium answers for cameras and audio outputs together. Its process for them would stay for seconds.
        QCOMPARE(settled(u"navigator.mediaDevices.enumerateDevices().then(Array.isArray)"_s), QVariant(true));
        QStringList commands;
        for (const qint64 child : RunningProcess::children(QCoreApplication::applicationPid()))
            commands << QString::fromUtf8(RunningProcess::read(child, u"cmdline"_s));
        QVERIFY(!commands.isEmpty());
        for (const QString &command : std::as_const(commands))
            QVERIFY2(!command.contains("--utility-sub-type=video_capture"_L1), qPrintable(command));
    }

    void headersReachThePage()
    {
        const QString request = u"new Promise((done, fail) => { const r = new XMLHttpRequest(); r.open('GET', '%1'); "
                                "r.onload = () => done(r.status + ' ' + r.getResponseHeader('Content-Type')); "
                                "r.onerror = () => fail(new TypeError('failed')); r.send() })"_s;
        QCOMPARE(settled(request.arg(u"data.json?v=3"_s)), u"200 application/json"_s);
        QCOMPARE(settled(u"document.characterSet"_s), u"UTF-8"_s);
        QCOMPARE(settled(request.arg(u"missing.json"_s)), u"rejected: TypeError"_s);
        for (const QString &error : std::as_const(m_consoleErrors))
            QVERIFY2(error.contains("missing.json"_L1), qPrintable(error));
        m_consoleErrors.clear();
    }

    void nothingLeavesTheApplication()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const QString host = u"127.0.0.1:%1/"_s.arg(server.serverPort());
        const QString attempt = u"(() => { fetch('http://%1').catch(() => 0); new WebSocket('ws://%1'); "
                                "new Image().src = 'http://%1a.png'; navigator.sendBeacon('http://%1b'); "
                                "const f = document.createElement('iframe'); f.src = 'http://%1c'; "
                                "document.body.append(f); })()"_s.arg(host);
        QCOMPARE(errorOrFine(attempt), u"fine"_s);
        QCOMPARE(settled(u"new Promise(done => { const s = new WebSocket('ws://%1'); s.onopen = () => done('open'); "
                         "s.onerror = () => done('refused') })"_s.arg(host)),
            u"refused"_s);
        QCOMPARE(settled(u"fetch('http://%1')"_s.arg(host)), u"rejected: TypeError"_s);
        QVERIFY(!server.hasPendingConnections());
        for (const QString &error : std::as_const(m_consoleErrors))
            QVERIFY2(error.contains("127.0.0.1"_L1), qPrintable(error)); // the refusals
        m_consoleErrors.clear();
    }

    void noPeerConnectionLeavesTheApplication()
    {
        // Chromium sends for WebRTC without asking the interceptor or the page's policy.
        QUdpSocket datagrams;
        QVERIFY(datagrams.bind(QHostAddress::LocalHost));
        QTcpServer streams;
        QVERIFY(streams.listen(QHostAddress::LocalHost));
        const QString attempt
            = u"(async () => { try {"
              "  const frame = document.createElement('iframe');"
              "  document.body.append(frame);"
              "  for (const scope of [window, frame.contentWindow]) {"
              "    const connection = new scope.RTCPeerConnection({ iceServers: ["
              "      { urls: ['stun:127.0.0.1:%1', 'stun:localhost:%1'] },"
              "      { urls: ['turn:127.0.0.1:%1?transport=udp', 'turn:127.0.0.1:%2?transport=tcp',"
              "               'turns:127.0.0.1:%2?transport=tcp'], username: 'a', credential: 'b' }] });"
              "    connection.createDataChannel('x');"
              "    await connection.setLocalDescription(await connection.createOffer());"
              "    if (connection.iceGatheringState !== 'complete')"
              "      await new Promise(done => connection.onicegatheringstatechange ="
              "        () => connection.iceGatheringState === 'complete' && done());"
              "    connection.close();"
              "  }"
              "  frame.remove();"
              "  } finally { window.gathered = true } })()"_s.arg(datagrams.localPort())
                  .arg(streams.serverPort());
        QCOMPARE(errorOrFine(attempt), u"fine"_s);
        const auto left = [&] { return datagrams.hasPendingDatagrams() || streams.hasPendingConnections(); };
        QVERIFY(QTest::qWaitFor([&] { return left() || settled(u"window.gathered === true"_s).toBool(); }, 60000));
        QVERIFY2(!datagrams.hasPendingDatagrams(), "a datagram has left");
        QVERIFY2(!streams.hasPendingConnections(), "a connection was made");
    }

    void thePageStaysAndOpensNothing()
    {
        const QUrl address = m_host->page()->url();
        QCOMPARE(settled(u"String(window.open('qv-app://app/data.json'))"_s), u"null"_s);
        QCOMPARE(errorOrFine(u"location.href = 'data:text/html,gone'"_s), u"fine"_s);
        QCOMPARE(errorOrFine(u"location.href = 'qv-app://app/data.json'"_s), u"fine"_s);
        QCOMPARE(settled(u"document.title"_s), u"host test"_s);
        QCOMPARE(m_host->page()->url(), address);
        QCOMPARE(m_host->page()->history()->count(), 1);
        m_consoleErrors.clear();
    }

    void everyPermissionIsDenied()
    {
        QCOMPARE(settled(u"navigator.mediaDevices.getUserMedia({ audio: true })"_s).toString().left(9), u"rejected:"_s);
        QCOMPARE(settled(u"Notification.requestPermission()"_s), u"denied"_s);
    }

    void dropsAreTheWindows()
    {
        QVERIFY(!m_host->view()->acceptDrops());
        const QList<QWidget *> children = m_host->view()->findChildren<QWidget *>();
        QVERIFY(!children.isEmpty());
        for (const QWidget *child : children)
            QVERIFY(!child->acceptDrops());
    }

    void assistiveToolsAreToldWhoHasTheFocus()
    {
        if (PageAccessible::isLeftToChromium())
            QSKIP("Chromium describes the page itself");
        const QAccessibleInterface *view = QAccessible::queryAccessibleInterface(m_host->view());
        QVERIFY(view);
        QCOMPARE(view->childCount(), 1);
        const auto focused = [view] { return bool(view->child(0)->state().focused); };
        QCOMPARE(view->child(0)->text(QAccessible::Name), u"Score"_s);
        QCOMPARE(view->child(0)->childCount(), 0);
        QPushButton elsewhere(u"elsewhere"_s);
        elsewhere.show();
        for (int turn = 0; turn < 2; ++turn) {
            m_host->view()->activateWindow();
            m_host->view()->setFocus();
            QTRY_VERIFY(focused());
            elsewhere.activateWindow();
            elsewhere.setFocus();
            QTRY_VERIFY(elsewhere.hasFocus() && !focused());
        }
    }

    void theMenuOffersInspectOnly()
    {
        QVERIFY(m_host->view()->focusProxy());
        QTest::mouseClick(m_host->view()->focusProxy(), Qt::RightButton);
        QTRY_VERIFY(m_host->view()->findChild<QMenu *>());
        const auto *menu = m_host->view()->findChild<QMenu *>();
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions().constFirst()->text(), u"Inspect"_s);
        m_host->view()->findChild<QMenu *>()->close();
    }

    void theInspectorIsAWindowOfItsOwn()
    {
        const auto inspector = []() -> QWebEngineView * {
            for (QWidget *window : QApplication::topLevelWidgets()) {
                if (window->isVisible() && window->windowTitle() == "Inspector"_L1)
                    return qobject_cast<QWebEngineView *>(window);
            }
            return nullptr;
        };
        const auto *view = qobject_cast<EngineView *>(m_host->view());
        for (int time = 1; time <= 2; ++time) {
            QVERIFY(!view->isInspected());
            QTest::mouseClick(view->focusProxy(), Qt::RightButton);
            QTRY_VERIFY(view->findChild<QMenu *>());
            auto *menu = view->findChild<QMenu *>();
            menu->actions().constFirst()->trigger();
            menu->close();
            QTRY_VERIFY(!view->findChild<QMenu *>());
            QVERIFY(inspector());
            QVERIFY(view->isInspected());
            QTRY_COMPARE(inspector()->url().scheme(), u"devtools"_s);
            QTRY_VERIFY(!inspector()->page()->isLoading());
            QCOMPARE(inspector()->page()->inspectedPage(), m_host->page());
            QVERIFY(inspector()->close());
            QVERIFY(!m_host->page()->devToolsPage());
        }
        QVERIFY(!view->isInspected());
    }

    void theSnapshotShowsThePage()
    {
        QTRY_VERIFY(([this] {
            QImage picture;
            m_host->snapshot([&picture](const QImage &image) { picture = image; });
            return picture.size() == QSize(300, 200) && picture.pixelColor(150, 100) == QColor(10, 200, 30);
        })());
    }

    void whatThePageLeavesOpenHasThePalettesColor()
    {
        QCOMPARE(errorOrFine(u"document.documentElement.style.background = 'transparent'"_s), u"fine"_s);
        for (const QColor &color : { QColor(22, 22, 25), QColor(232, 232, 236) }) {
            QPalette palette;
            palette.setColor(QPalette::Window, color);
            m_host->view()->setPalette(palette);
            QTRY_VERIFY(([this, color] {
                QImage picture;
                m_host->snapshot([&picture](const QImage &image) { picture = image; });
                return picture.pixelColor(150, 100) == color;
            })());
        }
        m_host->view()->setPalette({});
        QCOMPARE(errorOrFine(u"document.documentElement.style.background = ''"_s), u"fine"_s);
    }

    void wrappersShareTheViewAndGiveItBack()
    {
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        const qsizetype messages = m_inbox.messages.size();
        for (int i = 0; i < 2; ++i) {
            auto *wrapper = new AlphaTabWebView(m_host->view());
            layout->addWidget(wrapper);
            window.show();
            QCOMPARE(wrapper->webView(), m_host->view());
            QTRY_VERIFY(m_host->view()->isVisible());
            delete wrapper;
        }
        QCOMPARE(settled(u"document.title"_s), u"host test"_s);
        QCOMPARE(m_inbox.messages.size(), messages + 1); // no second "ready": the page was not loaded again
    }

    void theEndOfThePageIsToldAndItCanBeLoadedAnew()
    {
        QVERIFY(m_inbox.healths.isEmpty());
        m_host->endPage();
        QTRY_COMPARE(m_inbox.healths, QList<PageHealth>{ PageHealth::Ended });
        QCOMPARE(m_log.size(), 1);
        QVERIFY2(m_log.constFirst().startsWith(u"[Quaverly] the page has ended: "_s), qPrintable(m_log.constFirst()));
        m_log.clear();
        m_inbox.messages.clear();
        m_host->load(QUrl(u"qv-app://app/index.html"_s));
        QTRY_COMPARE_WITH_TIMEOUT(m_inbox.messages.size(), 1, 30000);
        QCOMPARE(settled(u"document.title"_s), u"host test"_s);
        QCOMPARE(m_inbox.healths.size(), 1);
    }

    void withoutAWebFolderNothingLoadsAndNobodyComplains()
    {
        ScriptHandler handler([this](const QString &line) { m_log << line; });
        WebEngineHost host(handler, std::nullopt);
        QVERIFY(!host.schemeHandler());
        bool failed = false;
        connect(host.page(), &QWebEnginePage::loadFinished, this, [&failed](bool ok) { failed = !ok; });
        host.load(QUrl(u"qv-app://app/index.html"_s));
        QTRY_VERIFY(failed);
        std::optional<QString> error;
        host.evaluate(u"window.qv.stop()"_s, [&error](const auto &e) { error = e.value_or(u"fine"_s); });
        QTRY_VERIFY(error);
        QVERIFY2(*error != "fine"_L1, qPrintable(*error));
    }
};

int main(int argc, char *argv[]) { return runEngineTest<TestWebEngineHost>(argc, argv); }

#include "test_web_engine_host.moc"
