#pragma once

#include "engine_host/bridge/ScoreSection.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariantList>

/// What the page reports of itself to the host around it, and the keys that the host hands it: whether the page can be
/// heard at all, and what the menus need to know of the score.
///
/// None of it is a message: the state that the calls and messages share does not depend on it.
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
    /// Called by the page: the sections of the score that it shows, each with "title" and "start"; what has neither
    /// text nor time is left out.
    Q_INVOKABLE void reportSections(const QVariantList &sections);

    /// Hands the page a key that it answers for.
    ///
    /// @param key as QKeySequence::PortableText has it: "Ctrl+Left"
    void pressKey(const QString &key);

Q_SIGNALS:
    void audioOutputChanged(bool working);
    void synthLost();
    void sectionsChanged(const QList<ScoreSection> &sections);
    /// For the page. It is a signal and no key event, because Chromium drops events while something else has the focus.
    void keyPressed(const QString &key);
};
