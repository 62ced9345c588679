#include "engine_host/process/ChromiumSwitches.h"

#include <QList>
#include <QtGlobal>

#include <algorithm>

namespace ChromiumSwitches {

namespace {

constexpr char flagsVariable[] = "QTWEBENGINE_CHROMIUM_FLAGS";

/// Adds to what an option lists, separated by commas. Of several such options Chromium knows the last alone.
void enlist(QByteArrayList &flags, const QByteArray &option, const QByteArray &value)
{
    const auto last = std::find_if(
        flags.rbegin(), flags.rend(), [&option](const QByteArray &flag) { return flag.startsWith(option); });
    if (last == flags.rend())
        flags.append(option + value);
    else if (!last->mid(option.size()).split(',').contains(value))
        last->append(',' + value);
}

/// Adds an option with its value, unless it is there with another one.
void choose(QByteArrayList &flags, const QByteArray &option, const QByteArray &value)
{
    const auto same = [&option](const QByteArray &flag) { return flag.startsWith(option); };
    if (std::none_of(flags.begin(), flags.end(), same))
        flags.append(option + value);
}

void add(QByteArrayList &flags, const QByteArray &flag)
{
    if (!flags.contains(flag))
        flags.append(flag);
}

} // namespace

QByteArray flagsFor(const QByteArray &flags)
{
    QByteArrayList list = flags.isEmpty() ? QByteArrayList() : flags.split(' ');
    enlist(list, "--enable-features=", "SharedArrayBuffer");
    enlist(list, "--enable-features=", "RunVideoCaptureServiceInBrowserProcess");
    enlist(list, "--js-flags=", "--expose-gc");
    enlist(list, "--js-flags=", "--no-memory-reducer");
    choose(list, "--force-webrtc-ip-handling-policy=", "disable_non_proxied_udp");
    choose(list, "--proxy-server=", "127.0.0.1:9");
    choose(list, "--proxy-bypass-list=", "<-loopback>");
    enlist(list, "--disable-features=", "HardwareMediaKeyHandling");
    add(list, "--no-unsandboxed-zygote");
    return list.join(' ');
}

void adapt() { qputenv(flagsVariable, flagsFor(qgetenv(flagsVariable))); }

} // namespace ChromiumSwitches
