#include "tests/engine/EngineSession.h"

#include "engine_host/EnginePage.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <QEventLoop>
#include <QTimer>
#include <QUrl>
#include <QWidget>

using namespace Qt::StringLiterals;

EngineSession::EngineSession(const QString &webFolder)
    : m_handler([this](const QString &line) { m_complaints << line; })
    , m_host(std::make_unique<WebEngineHost>(m_handler, webFolder))
{
    m_clock.start();
    m_handler.setController(this);
    QObject::connect(m_host->page(), &EnginePage::consoleError, m_host.get(),
        [this](const QString &text) { m_complaints << u"console: "_s + text; });
}

EngineSession::~EngineSession() { m_handler.setController(nullptr); }

bool EngineSession::start(QSize size, bool shown)
{
    m_host->view()->resize(size);
    m_host->view()->setVisible(shown);
    m_host->load(QUrl(u"qv-app://app/index.html"_s));
    return waitForCount(u"ready"_s, 1);
}

void EngineSession::call(const QString &script)
{
    m_host->evaluate(script, [this, script](const std::optional<QString> &error) {
        if (error)
            m_complaints << script.left(80) + u" failed: "_s + *error;
    });
}

QVariant EngineSession::valueOf(const QString &expression)
{
    bool arrived = false;
    QVariant answer;
    m_host->page()->runJavaScript(expression, [&](const QVariant &value) {
        answer = value;
        arrived = true;
    });
    waitFor([&] { return arrived; });
    return answer;
}

bool EngineSession::waitFor(const std::function<bool()> &happened, int milliseconds)
{
    // An event loop of its own: QTest::qWaitFor sleeps between single rounds, which Chromium's many small tasks
    // turn into seconds.
    if (happened())
        return true;
    QEventLoop loop;
    QTimer look;
    bool looking = false; // a look may wait for something itself
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (!looking) {
            looking = true;
            if (happened())
                loop.exit(0);
            looking = false;
        }
    });
    look.start(10);
    QTimer::singleShot(milliseconds, &loop, [&] { loop.exit(1); });
    return loop.exec() == 0;
}

bool EngineSession::waitForCount(const QString &type, qsizetype wanted, int milliseconds)
{
    return waitFor([&] { return count(type) >= wanted; }, milliseconds);
}

bool EngineSession::open(const QByteArray &bytes)
{
    const qsizetype drawn = count(u"rendered"_s);
    call(BridgeCalls::loadBase64(bytes));
    return waitForScore(drawn);
}

bool EngineSession::openDemo()
{
    const qsizetype drawn = count(u"rendered"_s);
    call(BridgeCalls::loadSample());
    return waitForScore(drawn);
}

bool EngineSession::waitForScore(qsizetype drawn)
{
    return waitForCount(u"rendered"_s, drawn + 1, 60000) && waitForCount(u"playerReady"_s, 1, 60000);
}

QList<EngineSession::Heard> EngineSession::heard(const QString &type) const
{
    QList<Heard> found;
    for (const Heard &one : m_heard) {
        if (one.message.value(u"type"_s) == type)
            found << one;
    }
    return found;
}

QVariantMap EngineSession::last(const QString &type) const
{
    const QList<Heard> all = heard(type);
    return all.isEmpty() ? QVariantMap() : all.constLast().message;
}

double EngineSession::position() const { return last(u"position"_s).value(u"currentTime"_s, -1).toDouble(); }

double EngineSession::length() const { return last(u"position"_s).value(u"endTime"_s, -1).toDouble(); }

QString EngineSession::listenScript()
{
    return uR"((() => {
        const connect = AudioNode.prototype.connect;
        const taps = [];
        AudioNode.prototype.connect = function (target, ...rest) {
            if (target instanceof AudioDestinationNode) {
                const tap = this.context.createAnalyser();
                tap.fftSize = 32768;
                connect.call(this, tap);
                taps.push(tap);
                globalThis.tap = tap;
            }
            return connect.call(this, target, ...rest);
        };
        globalThis.loudness = () => {
            // Of a context that sleeps a tap keeps what was heard last.
            const peaks = taps.filter((tap) => tap.context.state === "running").map((tap) => {
                const samples = new Float32Array(tap.fftSize);
                tap.getFloatTimeDomainData(samples);
                return samples.reduce((peak, sample) => Math.max(peak, Math.abs(sample)), 0);
            });
            return Math.max(0, ...peaks);
        };
        return true;
    })())"_s;
}

void EngineSession::listen() { valueOf(listenScript()); }

double EngineSession::loudness() { return valueOf(u"loudness()"_s).toDouble(); }

void EngineSession::failToDecodeWaveFiles()
{
    // Of a backing track only the beginning is decoded before its score is shown.
    valueOf(uR"((() => {
            const decode = BaseAudioContext.prototype.decodeAudioData;
            let recordings = 0;
            BaseAudioContext.prototype.decodeAudioData = function (file) {
                const isRecording = String.fromCharCode(...new Uint8Array(file, 0, 4)) === "RIFF";
                return isRecording && recordings++ > 0 ? Promise.reject(new Error("out of memory")) : decode.call(this, file);
            };
            return true;
        })())"_s);
}

void EngineSession::handle(const QVariantMap &message) { m_heard << Heard{ m_clock.elapsed(), message }; }
