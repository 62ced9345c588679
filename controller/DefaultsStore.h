#pragma once

#include "controller/SaveObserver.h"
#include "controller/SettlingFile.h"

#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// The user's settings: typed values in one JSON file, written as a whole at each assignment.
///
/// Several programs may share the file. An assignment changes its own key only, in the file as it is then; of two lists
/// of texts both programs' additions and removals stay. What others write is seen when the store is made.
///
/// What could not be saved is saved with the next assignment, or when it is asked for.
///
/// The file is with the system when an assignment returns and on the disk about a second after the last one, or when
/// the store ends: a slider that is dragged does not wait for the disk.
///
/// A getter gives nothing when the key is absent or holds a value of another type. A file that cannot be understood,
/// or is too large to be settings, is renamed at the first look, so that nothing of it is lost, and the store begins
/// empty. One that cannot be read is renamed when something is assigned: it may be readable again by then.
class DefaultsStore final {
    Q_DISABLE_COPY_MOVE(DefaultsStore)

public:
    using Log = std::function<void(const QString &)>;

    /// In bytes; honest files have a few thousand. It is read at each assignment.
    static constexpr qint64 largestFile = 4 << 20;

    /// @param filePath the JSON file; it and its folder are made at the first assignment
    /// @param log takes one line for a damaged file, and for a write that failed in another way than the one before
    DefaultsStore(QString filePath, Log log);

    /// Null for none.
    void setSaveObserver(SaveObserver observer);
    /// Where all is saved nothing happens.
    void saveWhatIsUnsaved();

    /// The file in the user's configuration folder.
    static QString userFilePath();

    std::optional<qint64> integer(const QString &key) const;
    std::optional<double> real(const QString &key) const;
    std::optional<bool> boolean(const QString &key) const;
    std::optional<QString> text(const QString &key) const;
    std::optional<QStringList> textList(const QString &key) const;

    void setInteger(const QString &key, qint64 value);
    void setReal(const QString &key, double value);
    void setBoolean(const QString &key, bool value);
    void setText(const QString &key, const QString &value);
    void setTextList(const QString &key, const QStringList &value);

private:
    /// A look at the file: what it holds, or why it holds nothing, if it is there.
    struct Contents {
        std::optional<QJsonObject> values;
        QString damage;
        QString unreadable;
    };
    Contents stored() const;
    void read();
    void setAside(const QString &complaint, const QString &reason);
    void write(const QString &key, const QJsonValue &value);
    void save();
    void report(const std::optional<QString> &reason);

    const QString m_filePath;
    const Log m_log;
    /// As read and assigned here; what was merged into the file beside that is not in it.
    QJsonObject m_values;
    /// The values that the file is to be brought forward from, by the keys that were assigned since it was written.
    QHash<QString, QJsonValue> m_unsaved;
    QString m_lastReason;
    SaveObserver m_observer;
    SettlingFile m_settling;
};
