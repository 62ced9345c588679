#pragma once

#include "engine_host/bridge/LoopSpan.h"
#include "engine_host/bridge/MarkedRange.h"
#include "engine_host/bridge/ScoreSection.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

/// What the page reports of itself to the host around it, and the keys that the host hands it: whether the page can be
/// heard at all, and what the menus need to know of the score.
///
/// None of it is a message: the state that the calls and messages share does not depend on it.
class PageReports final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageReports)

    /// For the page: how it is to show the score, beside what the calls say. Also a page that is loaded anew finds it.
    Q_PROPERTY(QVariantMap look READ look NOTIFY lookChanged)
    /// For the page: whether the count-in, where it is on, is before each pass of a loop, and not only before the
    /// first.
    Q_PROPERTY(bool countsInPasses READ countsInPasses NOTIFY countsInPassesChanged)

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
    /// Called by the page: what looping loops, from one millisecond of score time to a later one; the whole score where
    /// no range is chosen. Anything else is no span and is left out.
    Q_INVOKABLE void reportLoopSpan(double startMs, double endMs);
    /// Called by the page: the user has chosen what is to be looped in a way that asks for looping too.
    Q_INVOKABLE void reportLoopWanted();

    /// Called by the page: what looping loops, as MarkedRange::toMap has it; what is no range stands for the whole
    /// score.
    Q_INVOKABLE void reportRange(const QVariantMap &range);
    /// Called by the page: the pages that wantPrint() wants are there to be printed, or cannot be.
    Q_INVOKABLE void reportPrintPrepared(bool succeeded);
    QVariantMap look() const { return m_look; }
    /// @param name "dark" with a boolean, or "staves" with "both", "tablature" or "notation"
    void setLook(const QString &name, const QVariant &value);
    bool countsInPasses() const { return m_countsInPasses; }
    void setCountsInPasses(bool on);

    /// Hands the page a key that it answers for.
    ///
    /// @param key as QKeySequence::PortableText has it: "Ctrl+Left"
    void pressKey(const QString &key);
    /// Has the page choose what looping loops.
    void chooseRange(const MarkedRange &range);
    /// Has the page show the fretboard or not, and for which hand.
    void showFretboard(bool shown, bool leftHanded);
    /// Has the page make pages of its score, for as much room as each of them has, in CSS pixels.
    void wantPrint(double width, double height);
    /// Those pages are printed: nobody needs them any more.
    void endPrint();

Q_SIGNALS:
    void audioOutputChanged(bool working);
    void synthLost();
    void sectionsChanged(const QList<ScoreSection> &sections);
    void rangeChanged(const std::optional<MarkedRange> &range);
    void printPrepared(bool succeeded);
    void loopSpanChanged(const LoopSpan &span);
    void loopWanted();

    // For the page
    /// It is a signal and no key event, because Chromium drops events while something else has the focus.
    void keyPressed(const QString &key);
    void rangeWanted(const QVariantMap &range);
    void fretboardWanted(bool shown, bool leftHanded);
    void printWanted(double width, double height);
    void printEnded();
    void lookChanged();
    void countsInPassesChanged();

private:
    bool m_countsInPasses = false;
    QVariantMap m_look{ { QStringLiteral("dark"), false }, { QStringLiteral("staves"), QStringLiteral("both") } };
};
