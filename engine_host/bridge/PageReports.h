#pragma once

#include <QObject>
#include <QString>

/// What the page reports of itself to the host around it: whether it can be heard at all.
///
/// None of it is a message: the program's state does not depend on it.
class PageReports final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageReports)

public:
    explicit PageReports(QObject *parent = nullptr);

    /// The object's name on the web channel.
    static QString name();

    /// Called by the page: it has no audio output any more, so that its playback stands still, or has one again.
    Q_INVOKABLE void reportAudioOutput(bool working);
    /// Called by the page: its synthesizer does not answer, and only a page that is loaded anew has one again.
    Q_INVOKABLE void reportSynthLost();

Q_SIGNALS:
    void audioOutputChanged(bool working);
    void synthLost();
};
