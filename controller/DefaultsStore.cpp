#include "controller/DefaultsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStandardPaths>

#include <cmath>

using namespace Qt::StringLiterals;

DefaultsStore::DefaultsStore(QString filePath, Log log)
    : m_filePath(std::move(filePath))
    , m_log(std::move(log))
{
    read();
}

QString DefaultsStore::userFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/quaverly/defaults.json"_s;
}

void DefaultsStore::read()
{
    QFile file(m_filePath);
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        m_log(u"[Quaverly] failed to read the settings "_s + m_filePath + u": "_s + file.errorString());
        return;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    file.close();
    if (document.isObject())
        m_values = document.object();
    else
        setAside(error.error == QJsonParseError::NoError ? u"not an object"_s : error.errorString());
}

void DefaultsStore::setAside(const QString &reason)
{
    QString target = m_filePath + u".damaged"_s;
    for (int i = 2; QFileInfo::exists(target); ++i)
        target = m_filePath + u".damaged-"_s + QString::number(i);
    const QString outcome = QFile::rename(m_filePath, target) ? u"kept as "_s + target : u"left in its place"_s;
    m_log(u"[Quaverly] damaged settings file "_s + m_filePath + u" ("_s + reason + u"), "_s + outcome);
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
    for (const QJsonValue &item : array) {
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

void DefaultsStore::write(const QString &key, const QJsonValue &value)
{
    m_values.insert(key, value);
    QDir().mkpath(QFileInfo(m_filePath).absolutePath());
    QSaveFile file(m_filePath);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(m_values).toJson()) < 0 || !file.commit())
        m_log(u"[Quaverly] failed to write the settings "_s + m_filePath + u": "_s + file.errorString());
}
