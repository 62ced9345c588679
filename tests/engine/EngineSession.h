#pragma once

#include "engine_host/WebEngineHost.h"
#include "engine_host/bridge/MessageReceiver.h"
#include "engine_host/bridge/ScriptHandler.h"
#include "tests/support/EngineTestMain.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QTest>

#include <functional>
#include <memory>

/// One run of the real page, with everything it said.
class EngineSession final : public MessageReceiver {
public:
    struct Heard {
        qint64 at = 0; ///< milliseconds since the session began
        QVariantMap message;
    };

    /// `webFolder` holds the page; the built one by default.
    explicit EngineSession(const QString &webFolder = qEnvironmentVariable("QUAVERLY_WEB_FOLDER"));
    ~EngineSession() override;
    Q_DISABLE_COPY_MOVE(EngineSession)

    /// What was told of how the page is.
    QList<PageHealth> healths;

    /// Loads the page in a view of the given size and waits until it can take a score.
    bool start(QSize size = { 1200, 800 }, bool shown = true);

    /// Makes one call; an exception in it ends up in complaints().
    void call(const QString &script);
    /// The value of an expression in the page.
    QVariant valueOf(const QString &expression);
    /// Waits for `happened`, at most `milliseconds`.
    bool waitFor(const std::function<bool()> &happened, int milliseconds = 20000);
    bool waitForCount(const QString &type, qsizetype count, int milliseconds = 20000);

    /// Opens `bytes` as a file and waits until it can be played and is drawn.
    bool open(const QByteArray &bytes);
    bool openDemo();

    QList<Heard> heard(const QString &type) const;
    qsizetype count(const QString &type) const { return heard(type).size(); }
    QVariantMap last(const QString &type) const;
    /// Milliseconds of score time; -1 before the first position.
    double position() const;
    double length() const;
    bool isPlaying() const { return last(QStringLiteral("state")).value(QStringLiteral("playing")).toBool(); }

    /// Console errors and failed calls; a good run has none.
    QStringList complaints() const { return m_complaints; }
    WebEngineHost &host() { return *m_host; }

    /// Lets what leaves the page for the audio output be looked at from now on: `tap` is the newest AnalyserNode before
    /// an output, `loudness()` the peak of the last three quarters of a second.
    static QString listenScript();
    /// From now on what leaves the page for the audio output can be measured with loudness().
    void listen();
    /// Peak of the last three quarters of a second, 0 to 1.
    double loudness();

    /// From now on Chromium can decode the next WAVE file that it is handed, and none after that.
    void failToDecodeWaveFiles();

    void handle(const QVariantMap &message) override;
    void pageHealthChanged(PageHealth health) override { healths << health; }

private:
    bool waitForScore(qsizetype drawn);

    ScriptHandler m_handler;
    std::unique_ptr<WebEngineHost> m_host;
    QElapsedTimer m_clock;
    QList<Heard> m_heard;
    QStringList m_complaints;
};
