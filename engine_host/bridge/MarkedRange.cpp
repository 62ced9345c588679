#include "engine_host/bridge/MarkedRange.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString startBarKey = u"startBar"_s;
const QString startTickKey = u"startTick"_s;
const QString endBarKey = u"endBar"_s;
const QString endTickKey = u"endTick"_s;

} // namespace

QVariantMap MarkedRange::toMap() const
{
    return { { startBarKey, startBar }, { startTickKey, startTick }, { endBarKey, endBar }, { endTickKey, endTick } };
}

std::optional<MarkedRange> MarkedRange::fromMap(const QVariantMap &map)
{
    bool allNumbers = true;
    const auto number = [&](const QString &key) {
        bool isNumber = false;
        const double value = map.value(key).toDouble(&isNumber);
        allNumbers = allNumbers && isNumber && std::isfinite(value) && std::abs(value) < 1e9;
        return value;
    };
    const double startBar = number(startBarKey);
    const double startTick = number(startTickKey);
    const double endBar = number(endBarKey);
    const double endTick = number(endTickKey);
    const bool inOrder = startBar < endBar || (startBar == endBar && (endTick < 0 || startTick < endTick));
    if (!allNumbers || startBar < 0 || startTick < 0 || !inOrder)
        return std::nullopt;
    return MarkedRange{ int(startBar), startTick, int(endBar), endTick };
}
