#include "engine_host/process/DrawingBackend.h"

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QtGlobal>

using namespace Qt::StringLiterals;

namespace DrawingBackend {

namespace {

constexpr char backendVariable[] = "QT_QUICK_BACKEND";
constexpr char integrationVariable[] = "QT_XCB_GL_INTEGRATION";

} // namespace

bool hasGraphicsCard(const QString &devices)
{
    // What draws has a render node; NVIDIA's own driver can do without one.
    const QDir nodes(devices + u"/dri"_s);
    return !nodes.entryList({ u"renderD*"_s }, QDir::AllEntries | QDir::System).isEmpty()
        || QFileInfo::exists(devices + u"/nvidiactl"_s);
}

QByteArray nameFor(bool hasGraphicsCard, const QByteArray &name)
{
    return name.isEmpty() && !hasGraphicsCard ? QByteArrayLiteral("software") : name;
}

QByteArray integrationFor(const QByteArray &backend, const QByteArray &integration)
{
    return integration.isEmpty() && backend == "software" ? QByteArrayLiteral("none") : integration;
}

void adapt()
{
    const QByteArray before = qgetenv(backendVariable);
    const QByteArray after = nameFor(hasGraphicsCard(u"/dev"_s), before);
    if (after != before)
        qputenv(backendVariable, after);
    const QByteArray integration = qgetenv(integrationVariable);
    if (const QByteArray fitting = integrationFor(after, integration); fitting != integration)
        qputenv(integrationVariable, fitting);
}

} // namespace DrawingBackend
