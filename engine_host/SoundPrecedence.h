#pragma once

#include <QThread>

/// While there is sound, lets the threads that it depends on go before others.
///
/// A thread of its own looks for them: that takes milliseconds, and the desktop's service may take its time to answer.
/// It looks again now and then, because the web engine starts new ones, for a sound that begins anew or for another
/// loudspeaker, and tells nobody.
class SoundPrecedence final {
    Q_DISABLE_COPY_MOVE(SoundPrecedence)

public:
    /// @param process whose threads, and those of its descendants, are meant
    explicit SoundPrecedence(qint64 process);
    ~SoundPrecedence();

    void setAudible(bool audible);

private:
    class Lookout;

    QThread m_thread;
    Lookout *m_lookout; // ends with the thread
};
