#include "app/Versions.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLocale>
#include <QScreen>
#include <QStringList>
#include <QSysInfo>
#include <qtwebenginecoreglobal.h>

using namespace Qt::StringLiterals;

namespace Versions {

QList<Part> parts()
{
    return {
        { u"Quaverly"_s, QCoreApplication::applicationVersion() },
        { u"alphaTab"_s, QStringLiteral(QUAVERLY_ALPHATAB_VERSION) },
        { u"Qt"_s, QString::fromLatin1(qVersion()) },
        { u"Chromium"_s, QString::fromLatin1(qWebEngineChromiumVersion()) },
    };
}

QString platform()
{
    const auto variable = [](const char *name) { return qEnvironmentVariable(name, u"-"_s); };
    QStringList lines{
        QSysInfo::prettyProductName() + u", "_s + QSysInfo::kernelType() + u' ' + QSysInfo::kernelVersion() + u", "_s
            + QSysInfo::currentCpuArchitecture(),
        u"Window system: "_s + QGuiApplication::platformName() + u", session "_s + variable("XDG_SESSION_TYPE")
            + u", desktop "_s + variable("XDG_CURRENT_DESKTOP"),
        u"Language: "_s + QLocale::system().uiLanguages().join(u' '),
    };
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        lines << u"Screen: %1 x %2, scale %3"_s.arg(screen->size().width())
                     .arg(screen->size().height())
                     .arg(screen->devicePixelRatio());
    }
    return lines.join(u'\n');
}

} // namespace Versions
