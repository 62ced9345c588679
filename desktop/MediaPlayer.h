#pragma once

#include "desktop/PositionJump.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QObject>
#include <QVariantMap>

class AlphaTabController;

/// The program as a media player on the session bus (MPRIS 2.2): media keys, the buttons of headsets and the desktop's
/// player widgets find it there.
///
/// What it answers, its interfaces read from the controller at that moment. It keeps only what it has announced, so
/// that it announces changes and nothing else.
class MediaPlayer final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MediaPlayer)

public:
    MediaPlayer(const QDBusConnection &bus, AlphaTabController &controller, QObject *parent = nullptr);
    ~MediaPlayer() override;

    static QString path();
    /// The name on the bus; another program of this kind that runs already has it, and this one then a longer name.
    QString service() const { return m_service; }

Q_SIGNALS:
    /// The window is to come to the front.
    void raiseRequested();
    void quitRequested();
    /// The position, in milliseconds, is not where it was to be expected.
    void jumped(double positionMs);

private:
    void observe();
    void announceSoon();
    void announce();
    void followPosition();

    QDBusConnection m_bus;
    AlphaTabController &m_controller;
    QString m_service;
    QVariantMap m_announced;
    bool m_announcesSoon = false;
    PositionJump m_position;
    QElapsedTimer m_clock;
};
