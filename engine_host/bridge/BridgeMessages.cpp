#include "engine_host/bridge/BridgeMessages.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace BridgeMessages {

namespace {

bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

QString textOf(const QVariantMap &message, const QString &key)
{
    const QVariant value = message.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

bool booleanOf(const QVariantMap &message, const QString &key)
{
    const QVariant value = message.value(key);
    return value.typeId() == QMetaType::Bool && value.toBool();
}

double numberOf(const QVariantMap &message, const QString &key)
{
    const QVariant value = message.value(key);
    return isNumber(value) ? value.toDouble() : 0.0;
}

/// Chromium hands every number over as a double; one without a fraction is an integer.
std::optional<int> integerOf(const QVariantMap &message, const QString &key)
{
    const QVariant value = message.value(key);
    if (!isNumber(value))
        return std::nullopt;
    const double number = value.toDouble();
    if (std::trunc(number) != number || std::abs(number) > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(number);
}

std::optional<QList<TrackEntry>> trackEntries(const QVariant &value)
{
    if (value.typeId() != QMetaType::QVariantList)
        return std::nullopt;
    const QVariantList list = value.toList();
    QList<TrackEntry> entries;
    for (const QVariant &item : list) {
        if (item.typeId() != QMetaType::QVariantMap)
            return std::nullopt;
        const QVariantMap entry = item.toMap();
        const std::optional<int> index = integerOf(entry, u"index"_s);
        if (!index)
            continue;
        const QVariant name = entry.value(u"name"_s);
        const QString fallback = QCoreApplication::translate("BridgeMessages", "Track %1").arg(qint64(*index) + 1);
        entries.append({ *index, name.typeId() == QMetaType::QString ? name.toString() : fallback });
    }
    return entries;
}

Score parseScore(const QVariantMap &message)
{
    return { textOf(message, u"title"_s), textOf(message, u"artist"_s), trackEntries(message.value(u"tracks"_s)),
        booleanOf(message, u"hasBackingTrack"_s) };
}

Error parseError(const QVariantMap &message)
{
    const QVariant value = message.value(u"message"_s);
    if (!value.isValid())
        return { u"?"_s };
    return { value.typeId() == QMetaType::QString ? value.toString() : describe(value) };
}

QString quoted(const QString &text)
{
    // JSON's escapes keep the form on one line whatever the text holds.
    const QByteArray json = QJsonDocument(QJsonArray{ text }).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(json.sliced(1, json.size() - 2));
}

} // namespace

std::optional<Message> parse(const QVariantMap &message)
{
    const QVariant typeValue = message.value(u"type"_s);
    if (typeValue.typeId() != QMetaType::QString)
        return std::nullopt;
    const QString type = typeValue.toString();

    if (type == "ready"_L1)
        return Ready{};
    if (type == "playerReady"_L1)
        return PlayerReady{};
    if (type == "score"_L1)
        return parseScore(message);
    if (type == "state"_L1)
        return State{ booleanOf(message, u"playing"_s) };
    if (type == "position"_L1)
        return Position{ numberOf(message, u"currentTime"_s), numberOf(message, u"endTime"_s) };
    if (type == "error"_L1)
        return parseError(message);
    if (type == "gpData"_L1)
        return GpData{ textOf(message, u"data"_s), textOf(message, u"title"_s) };
    if (type == "rendered"_L1)
        return Rendered{};
    return Unknown{};
}

QString describe(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        if (map.isEmpty())
            return u"[:]"_s;
        QStringList pairs;
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            pairs << quoted(it.key()) + u": "_s + describe(it.value());
        return u'[' + pairs.join(u", "_s) + u']';
    }
    case QMetaType::QVariantList: {
        QStringList items;
        const QVariantList list = value.toList();
        for (const QVariant &item : list)
            items << describe(item);
        return u'[' + items.join(u", "_s) + u']';
    }
    case QMetaType::QString:
        return quoted(value.toString());
    case QMetaType::Nullptr:
    case QMetaType::UnknownType:
        return u"null"_s;
    default:
        return value.toString();
    }
}

} // namespace BridgeMessages
