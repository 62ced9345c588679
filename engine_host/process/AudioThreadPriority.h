#pragma once

#include <QThread>

/// Raises the priority of audio threads while the page is audible.
///
/// A thread of its own looks for audio threads, because that takes milliseconds and RealtimeKit may answer late. It
/// looks again every second: Chromium starts new audio threads for a sound that begins anew or for another audio
/// output, and sends no signal.
class AudioThreadPriority final {
    Q_DISABLE_COPY_MOVE(AudioThreadPriority)

public:
    /// @param process whose threads, and those of its descendants, are meant
    explicit AudioThreadPriority(qint64 process);
    ~AudioThreadPriority();

    void setAudible(bool audible);

private:
    class Watcher;

    QThread m_thread;
    Watcher *m_watcher; // ends with the thread
};
