#include "controller/FileKinds.h"

#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

const QString &pdf()
{
    static const QString extension = u"pdf"_s;
    return extension;
}

QString extensionOf(const QUrl &file) { return QFileInfo(file.toLocalFile()).suffix().toLower(); }

} // namespace

namespace FileKinds {

const QStringList &scoreExtensions()
{
    static const QStringList extensions{ u"gp"_s, u"gp3"_s, u"gp4"_s, u"gp5"_s, u"gpx"_s, u"xml"_s, u"musicxml"_s,
        u"mxl"_s };
    return extensions;
}

const QStringList &openableExtensions()
{
    static const QStringList extensions = scoreExtensions() + QStringList{ pdf() };
    return extensions;
}

bool isPDF(const QUrl &file) { return extensionOf(file) == pdf(); }

bool isOpenable(const QUrl &file) { return file.isLocalFile() && openableExtensions().contains(extensionOf(file)); }

} // namespace FileKinds
