#include "engine_host/EngineSwitches.h"

#include <QList>
#include <QtGlobal>

#include <algorithm>

namespace EngineSwitches {

namespace {

constexpr char flagsVariable[] = "QTWEBENGINE_CHROMIUM_FLAGS";

/// Adds to what an option lists, separated by commas. Of several such options the web engine knows the last alone.
void enlist(QByteArrayList &flags, const QByteArray &option, const QByteArray &value)
{
    const auto last = std::find_if(
        flags.rbegin(), flags.rend(), [&option](const QByteArray &flag) { return flag.startsWith(option); });
    if (last == flags.rend())
        flags.append(option + value);
    else if (!last->mid(option.size()).split(',').contains(value))
        last->append(',' + value);
}

} // namespace

QByteArray flagsFor(const QByteArray &flags)
{
    QByteArrayList list = flags.isEmpty() ? QByteArrayList() : flags.split(' ');
    enlist(list, "--enable-features=", "SharedArrayBuffer");
    enlist(list, "--js-flags=", "--expose-gc");
    enlist(list, "--js-flags=", "--no-memory-reducer");
    return list.join(' ');
}

void adapt() { qputenv(flagsVariable, flagsFor(qgetenv(flagsVariable))); }

} // namespace EngineSwitches
