#include "engine_host/serving/WebFolder.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace WebFolder {

std::optional<QString> find(const QString &programFolder)
{
    for (const QString &place : { u"/web"_s, u"/../share/quaverly/web"_s }) {
        QString folder = QDir::cleanPath(programFolder + place);
        if (QFileInfo(folder).isDir())
            return folder;
    }
    return std::nullopt;
}

} // namespace WebFolder
