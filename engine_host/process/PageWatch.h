#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>

/// Notices when the page stops to answer.
///
/// Whoever evaluates a script in the page reports it here, and its answer. While nobody asks anything, the watch asks
/// by itself, so that a page which is busy with its own work is noticed too. Time in which this process stood still
/// itself says nothing about the page, as it may have stood still with it.
class PageWatch final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageWatch)

public:
    /// How long an answer may take.
    static constexpr std::chrono::milliseconds answerTimeoutMs{ 10000 };
    /// How long the watch is content with the last answer before it asks by itself.
    static constexpr std::chrono::milliseconds questionDelayMs{ 3000 };

    explicit PageWatch(std::chrono::milliseconds answerTimeout = answerTimeoutMs,
        std::chrono::milliseconds questionDelay = questionDelayMs, QObject *parent = nullptr);

    /// A page has been loaded: from now on it is watched.
    void start();
    /// There is no page to watch, or it is meant to stand still. What it still owes is forgotten.
    void stop();
    bool isWatching() const { return m_watching; }

    /// A script has been handed to the page.
    void asked();
    /// The page has answered one.
    void answered();

Q_SIGNALS:
    /// The page owes an answer for longer than it may.
    void notAnswering();
    /// It has answered after all.
    void answersAgain();
    /// A question should be asked now, with asked() and answered().
    void questionDue();

private:
    void wait();
    void giveUp();

    QTimer m_answerTimer;
    QElapsedTimer m_sinceWait;
    QTimer m_questionTimer;
    int m_owed = 0;
    bool m_watching = false;
    bool m_late = false;
};
