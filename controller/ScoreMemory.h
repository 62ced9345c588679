#pragma once

#include "controller/RememberedScore.h"
#include "controller/SaveObserver.h"

#include <QJsonObject>
#include <QString>

#include <functional>
#include <optional>

/// The file that remembers how each score was left, and whether it is to remember any.
///
/// Each look and each change reads the file anew, so that programs which run at the same time keep each other's scores.
/// A file that cannot be understood, or is too large for what is remembered, is as good as an empty one. What could not
/// be saved is saved with the next change, or when it is asked for.
class ScoreMemory final {
    Q_DISABLE_COPY_MOVE(ScoreMemory)

public:
    /// Writes one line to the system log.
    using Log = std::function<void(const QString &line)>;

    /// Beyond so many scores, those that were left the longest ago are forgotten.
    static constexpr int mostScores = 500;
    /// In bytes; each score takes a few hundred, and a hundred for each track.
    static constexpr qint64 largestFile = 32 << 20;

    /// @param filePath empty for a memory that keeps nothing
    ScoreMemory(QString filePath, Log log);

    /// Null for none.
    void setSaveObserver(SaveObserver observer);
    /// Where all is saved nothing happens.
    void saveWhatIsUnsaved();

    /// The file of the user that runs the program.
    static QString userFilePath();
    /// The name of a score in the file: its content's, whatever the file is called.
    static QString keyFor(QByteArrayView content);

    /// False until somebody has switched it on.
    bool isOn() const;
    void setOn(bool on);

    std::optional<RememberedScore> recall(const QString &key) const;
    void remember(const QString &key, const RememberedScore &score);

private:
    QJsonObject stored() const;
    QJsonObject fileToBe() const;
    void save();

    const QString m_filePath;
    const Log m_log;
    /// What was changed since the file was written.
    std::optional<bool> m_unsavedOn;
    QJsonObject m_unsavedScores;
    QString m_lastReason;
    SaveObserver m_observer;
};
