#include "controller/ScoreMemory.h"

#include "controller/FolderLock.h"
#include "controller/StateFolder.h"
#include "controller/WholeFile.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString onKey = u"on"_s;
const QString scoresKey = u"scores"_s;
/// Milliseconds since 1970.
const QString leftKey = u"left"_s;

/// Without those that were left the longest ago.
QJsonObject latest(QJsonObject scores)
{
    while (scores.size() > ScoreMemory::mostScores) {
        auto oldest = scores.begin();
        for (auto score = scores.begin(); score != scores.end(); ++score) {
            if ((*score)[leftKey].toDouble() < (*oldest)[leftKey].toDouble())
                oldest = score;
        }
        scores.erase(oldest);
    }
    return scores;
}

} // namespace

ScoreMemory::ScoreMemory(QString filePath, Log log)
    : m_filePath(std::move(filePath))
    , m_log(std::move(log))
{
}

QString ScoreMemory::userFilePath() { return StateFolder::path() + u"/scores.json"_s; }

QString ScoreMemory::keyFor(QByteArrayView content)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(content);
    return QString::fromLatin1(hash.result().toHex());
}

void ScoreMemory::setSaveObserver(SaveObserver observer) { m_observer = std::move(observer); }

bool ScoreMemory::isOn() const { return fileToBe()[onKey].toBool(); }

void ScoreMemory::setOn(bool on)
{
    if (m_filePath.isEmpty())
        return;
    m_unsavedOn = on;
    save();
}

std::optional<RememberedScore> ScoreMemory::recall(const QString &key) const
{
    const QJsonValue score = fileToBe()[scoresKey][key];
    return score.isObject() ? std::optional(RememberedScore::fromJson(score.toObject())) : std::nullopt;
}

void ScoreMemory::remember(const QString &key, const RememberedScore &score)
{
    if (m_filePath.isEmpty())
        return;
    QJsonObject entry = score.toJson();
    entry.insert(leftKey, double(QDateTime::currentMSecsSinceEpoch()));
    m_unsavedScores.insert(key, entry);
    m_unsavedScores = latest(std::move(m_unsavedScores));
    save();
}

QJsonObject ScoreMemory::stored() const
{
    QFile file(m_filePath);
    // To open a pipe takes for ever, and what is too large is no memory of so many scores.
    if (!QFileInfo(file).isFile() || file.size() > largestFile || !file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

/// The file as it is, with what is not yet in it.
QJsonObject ScoreMemory::fileToBe() const
{
    QJsonObject file = stored();
    if (m_unsavedOn)
        file.insert(onKey, *m_unsavedOn);
    if (m_unsavedScores.isEmpty())
        return file;
    QJsonObject scores = file[scoresKey].toObject();
    for (auto score = m_unsavedScores.begin(); score != m_unsavedScores.end(); ++score)
        scores.insert(score.key(), *score);
    file.insert(scoresKey, latest(std::move(scores)));
    return file;
}

void ScoreMemory::saveWhatIsUnsaved()
{
    if (m_unsavedOn || !m_unsavedScores.isEmpty())
        save();
}

void ScoreMemory::save()
{
    const QString folder = QFileInfo(m_filePath).absolutePath();
    QDir().mkpath(folder);
    const FolderLock lock(folder);
    const std::optional<QString> reason = WholeFile::write(
        m_filePath, QJsonDocument(fileToBe()).toJson(QJsonDocument::Compact), WholeFile::Durability::WithSystem);
    if (!reason) {
        m_unsavedOn.reset();
        m_unsavedScores = {};
    } else if (*reason != m_lastReason) {
        m_log(u"[Quaverly] failed to write "_s + m_filePath + u": "_s + *reason);
    }
    m_lastReason = reason.value_or(QString());
    if (m_observer)
        m_observer(m_filePath, reason);
}
