#include "engine_host/process/RootSandbox.h"

#include "engine_host/process/SystemLog.h"

#include <QByteArray>
#include <QList>
#include <QtGlobal>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace RootSandbox {

namespace {

constexpr char flagsVariable[] = "QTWEBENGINE_CHROMIUM_FLAGS";

} // namespace

QByteArray flagsFor(bool isRoot, const QByteArray &flags)
{
    const QByteArray noSandbox = "--no-sandbox";
    if (!isRoot || flags.split(' ').contains(noSandbox))
        return flags;
    return flags.isEmpty() ? noSandbox : flags + ' ' + noSandbox;
}

void adapt()
{
    const QByteArray before = qgetenv(flagsVariable);
    const QByteArray after = flagsFor(::geteuid() == 0, before);
    if (after == before)
        return;
    qputenv(flagsVariable, after);
    SystemLog::write(u"[Quaverly] running as root: Chromium's sandbox is off"_s);
}

} // namespace RootSandbox
