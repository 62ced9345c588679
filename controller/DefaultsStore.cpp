#include "controller/DefaultsStore.h"

#include "controller/FolderLock.h"
#include "controller/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// The value to store where another program may have stored one since: ours, but lists keep what others put in and go
/// without what others took out.
/// @param base what both began with
QJsonValue merged(const QJsonValue &base, const QJsonValue &ours, const QJsonValue &theirs)
{
    // A list that was emptied is empty.
    if (!ours.isArray() || !theirs.isArray() || ours.toArray().isEmpty())
        return ours;
    const QJsonArray began = base.toArray();
    const QJsonArray other = theirs.toArray();
    QJsonArray result;
    for (const QJsonValue item : ours.toArray()) {
        if (other.contains(item) || !began.contains(item))
            result.append(item);
    }
    // What they put in comes after our first, which is the latest of all.
    qsizetype place = std::min<qsizetype>(1, result.size());
    for (const QJsonValue item : other) {
        if (!began.contains(item) && !result.contains(item))
            result.insert(place++, item);
    }
    return result;
}

} // namespace

DefaultsStore::DefaultsStore(QString filePath, Log log)
    : m_filePath(std::move(filePath))
    , m_log(std::move(log))
    , m_settling(m_filePath)
{
    WholeFile::sweep(QFileInfo(m_filePath).absolutePath());
    read();
}

QString DefaultsStore::userFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/quaverly/defaults.json"_s;
}

void DefaultsStore::read()
{
    const Contents contents = stored();
    m_values = contents.values.value_or(QJsonObject());
    if (!contents.damage.isEmpty())
        setAside(u"damaged settings file "_s, contents.damage);
    else if (!contents.unreadable.isEmpty())
        m_log(u"[Quaverly] failed to read the settings "_s + m_filePath + u": "_s + contents.unreadable);
}

void DefaultsStore::setAside(const QString &complaint, const QString &reason)
{
    QString target = m_filePath + u".damaged"_s;
    for (int i = 2; QFileInfo::exists(target); ++i)
        target = m_filePath + u".damaged-"_s + QString::number(i);
    const QString result = QFile::rename(m_filePath, target) ? u"kept as "_s + target : u"left in its place"_s;
    m_log(u"[Quaverly] "_s + complaint + m_filePath + u" ("_s + reason + u"), "_s + result);
}

std::optional<qint64> DefaultsStore::integer(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    const double number = value.toDouble(0.5);
    // 2^53: beyond it a double no longer tells neighbouring integers apart.
    if (!value.isDouble() || std::trunc(number) != number || std::abs(number) > 9007199254740992.0)
        return std::nullopt;
    return static_cast<qint64>(number);
}

std::optional<double> DefaultsStore::real(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

std::optional<bool> DefaultsStore::boolean(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<QString> DefaultsStore::text(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QStringList> DefaultsStore::textList(const QString &key) const
{
    const QJsonValue value = m_values.value(key);
    if (!value.isArray())
        return std::nullopt;
    QStringList texts;
    const QJsonArray array = value.toArray();
    for (const QJsonValue item : array) {
        if (!item.isString())
            return std::nullopt;
        texts << item.toString();
    }
    return texts;
}

void DefaultsStore::setInteger(const QString &key, qint64 value) { write(key, value); }

void DefaultsStore::setReal(const QString &key, double value) { write(key, value); }

void DefaultsStore::setBoolean(const QString &key, bool value) { write(key, value); }

void DefaultsStore::setText(const QString &key, const QString &value) { write(key, value); }

void DefaultsStore::setTextList(const QString &key, const QStringList &value)
{
    write(key, QJsonArray::fromStringList(value));
}

DefaultsStore::Contents DefaultsStore::stored() const
{
    QFile file(m_filePath);
    // To open a pipe takes for ever.
    if (!QFileInfo(file).isFile())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        return { .unreadable = file.errorString() };
    if (file.size() > largestFile)
        return { .damage = u"too large"_s };
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (document.isObject())
        return { .values = document.object() };
    return { .damage = error.error == QJsonParseError::NoError ? u"not an object"_s : error.errorString() };
}

void DefaultsStore::write(const QString &key, const QJsonValue &value)
{
    if (!m_unsaved.contains(key))
        m_unsaved.insert(key, m_values.value(key));
    m_values.insert(key, value);
    save();
}

void DefaultsStore::save()
{
    const QString folder = QFileInfo(m_filePath).absolutePath();
    QDir().mkpath(folder);
    const FolderLock lock(folder);
    const Contents contents = stored();
    if (!contents.damage.isEmpty())
        setAside(u"damaged settings file "_s, contents.damage);
    else if (!contents.unreadable.isEmpty())
        setAside(u"failed to read the settings "_s, contents.unreadable);
    QJsonObject file = contents.values.value_or(m_values);
    for (auto began = m_unsaved.cbegin(); began != m_unsaved.cend(); ++began)
        file.insert(began.key(), merged(began.value(), m_values.value(began.key()), file.value(began.key())));
    report(WholeFile::write(m_filePath, QJsonDocument(file).toJson(), WholeFile::Durability::WithSystem));
}

void DefaultsStore::report(const std::optional<QString> &reason)
{
    if (!reason) {
        m_unsaved.clear();
        m_settling.changed();
    } else if (*reason != m_lastReason) {
        m_log(u"[Quaverly] failed to write the settings "_s + m_filePath + u": "_s + *reason);
    }
    m_lastReason = reason.value_or(QString());
    if (m_observer)
        m_observer(m_filePath, reason);
}

void DefaultsStore::saveWhatIsUnsaved()
{
    if (!m_unsaved.isEmpty())
        save();
}

void DefaultsStore::setSaveObserver(SaveObserver observer) { m_observer = std::move(observer); }
