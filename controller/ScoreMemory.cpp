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

bool ScoreMemory::isOn() const { return stored()[onKey].toBool(); }

void ScoreMemory::setOn(bool on)
{
    change([on](QJsonObject &file) { file.insert(onKey, on); });
}

std::optional<RememberedScore> ScoreMemory::recall(const QString &key) const
{
    const QJsonValue score = stored()[scoresKey][key];
    return score.isObject() ? std::optional(RememberedScore::fromJson(score.toObject())) : std::nullopt;
}

void ScoreMemory::remember(const QString &key, const RememberedScore &score)
{
    change([&](QJsonObject &file) {
        QJsonObject entry = score.toJson();
        entry.insert(leftKey, double(QDateTime::currentMSecsSinceEpoch()));
        QJsonObject scores = file[scoresKey].toObject();
        scores.insert(key, entry);
        file.insert(scoresKey, latest(std::move(scores)));
    });
}

QJsonObject ScoreMemory::stored() const
{
    QFile file(m_filePath);
    // To open a pipe takes for ever, and what is too large is no memory of so many scores.
    if (!QFileInfo(file).isFile() || file.size() > largestFile || !file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

void ScoreMemory::change(const std::function<void(QJsonObject &)> &edit)
{
    if (m_filePath.isEmpty())
        return;
    const QString folder = QFileInfo(m_filePath).absolutePath();
    QDir().mkpath(folder);
    const FolderLock lock(folder);
    QJsonObject file = stored();
    edit(file);
    if (const std::optional<QString> reason = WholeFile::write(
            m_filePath, QJsonDocument(file).toJson(QJsonDocument::Compact), WholeFile::Durability::WithSystem))
        m_log(u"[Quaverly] failed to write "_s + m_filePath + u": "_s + *reason);
}
