#pragma once

#include "engine_host/process/AudioServer.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>

/// Gives Chromium a new connection to the sound system when the page has no audio output any more.
///
/// Chromium's audio service connects to the sound server once in its life. When the server ends and comes back, or
/// another takes its place, the service has to be started anew. This object ends it as soon as a server is there again,
/// and once more when PipeWire comes up behind one that was first.
class AudioRecovery final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AudioRecovery)

public:
    struct Dependencies {
        /// Whether a sound server is there; asked often.
        std::function<AudioServer::Presence()> server;
        std::function<void()> endService;
    };
    struct Times {
        /// How often the server is looked for.
        std::chrono::milliseconds interval{ 500 };
        /// How long the page may take to get its output back from a new service, before the next one is tried. Each
        /// time it is twice as long: where no device is plugged in, no new service finds one.
        std::chrono::milliseconds firstRetryDelay{ 4000 };
        std::chrono::milliseconds lastRetryDelay{ 60000 };
    };

    AudioRecovery(Dependencies dependencies, const Times &times);

    /// The page has lost its audio output, or has it back.
    void setLost(bool lost);

private:
    void look();

    const Dependencies m_dependencies;
    const Times m_times;
    QTimer m_timer;
    AudioServer::Presence m_server = AudioServer::Presence::Away;
    QElapsedTimer m_sinceEnd;
    std::chrono::milliseconds m_retryDelay;
};
