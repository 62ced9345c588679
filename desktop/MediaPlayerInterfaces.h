#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QDeadlineTimer>
#include <QStringList>
#include <QVariantMap>

class AlphaTabController;
class MediaPlayer;

// The two interfaces of MPRIS 2.2 that every player has, with their names and units. The names are the bus's.
// NOLINTBEGIN

class MediaPlayerRoot final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MediaPlayerRoot)
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ yes)
    Q_PROPERTY(bool CanRaise READ yes)
    Q_PROPERTY(bool HasTrackList READ no)
    Q_PROPERTY(QString Identity READ identity)
    Q_PROPERTY(QString DesktopEntry READ desktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ uriSchemes)
    Q_PROPERTY(QStringList SupportedMimeTypes READ mimeTypes)

public:
    explicit MediaPlayerRoot(MediaPlayer &player);
    ~MediaPlayerRoot() override;

    static bool yes() { return true; }
    static bool no() { return false; }
    static QString identity();
    static QString desktopEntry();
    static QStringList uriSchemes();
    static QStringList mimeTypes();

public Q_SLOTS:
    void Raise();
    void Quit();

private:
    MediaPlayer &m_player;
};

class MediaPlayerControls final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MediaPlayerControls)
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(QString LoopStatus READ loopStatus WRITE setLoopStatus)
    Q_PROPERTY(double Rate READ rate WRITE setRate)
    Q_PROPERTY(double MinimumRate READ minimumRate)
    Q_PROPERTY(double MaximumRate READ maximumRate)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(double Volume READ volume WRITE setVolume)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(bool CanGoNext READ no)
    Q_PROPERTY(bool CanGoPrevious READ no)
    Q_PROPERTY(bool CanPlay READ canPlay)
    Q_PROPERTY(bool CanPause READ canPlay)
    Q_PROPERTY(bool CanSeek READ canSeek)
    Q_PROPERTY(bool CanControl READ yes)

public:
    MediaPlayerControls(MediaPlayer &player, AlphaTabController &controller);
    ~MediaPlayerControls() override;

    static bool yes() { return true; }
    static bool no() { return false; }
    /// "Playing", "Paused", or "Stopped" at the beginning.
    QString playbackStatus() const;
    /// "Track" or "None".
    QString loopStatus() const;
    void setLoopStatus(const QString &status);
    /// 1 is the score's own speed.
    double rate() const;
    void setRate(double rate);
    static double minimumRate();
    static double maximumRate();
    QVariantMap metadata() const;
    /// 0...1
    double volume() const;
    void setVolume(double volume);
    /// Microseconds of score time.
    qlonglong position() const;
    bool canPlay() const;
    bool canSeek() const;

public Q_SLOTS:
    void Next();
    void Previous();
    void Pause();
    void PlayPause();
    void Stop();
    void Play();
    /// @param offset microseconds, backwards when negative
    void Seek(qlonglong offset);
    void SetPosition(const QDBusObjectPath &trackId, qlonglong position);
    void OpenUri(const QString &uri);

Q_SIGNALS:
    void Seeked(qlonglong position);

private:
    void playOrPause(bool play);
    void seekTo(double positionMs);
    QString trackId() const;

    AlphaTabController &m_controller;
    /// Counts the scores that were opened, so that each has a name of its own.
    int m_scores = 0;
    /// While the page has not said that it plays or has paused as it was asked to.
    bool m_asked = false;
    bool m_askedToPlay = false;
    QDeadlineTimer m_askedUntil;
};

// NOLINTEND
