#include "pdf/process/HelperPrograms.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace HelperPrograms {

QString find(const QString &name)
{
    const QString folder = QCoreApplication::applicationDirPath();
    for (const QString &place : { u"/"_s, u"/../libexec/quaverly/"_s, u"/../"_s }) {
        const QString path = QDir::cleanPath(folder + place + name);
        if (QFileInfo(path).isFile() && QFileInfo(path).isExecutable())
            return path;
    }
    qWarning("A part of this program, %s, is missing.", qPrintable(name));
    return {};
}

} // namespace HelperPrograms
