#include "engine_host/serving/WebSchemeResolution.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace WebScheme {

QByteArray Response::header(const QByteArray &name) const
{
    for (const auto &[key, value] : headers) {
        if (key == name)
            return value;
    }
    return {};
}

QByteArray mimeType(const QString &filePath)
{
    static constexpr std::array<std::pair<QLatin1StringView, const char *>, 11> known{ {
        { "html"_L1, "text/html; charset=utf-8" },
        { "js"_L1, "text/javascript; charset=utf-8" },
        { "css"_L1, "text/css; charset=utf-8" },
        { "svg"_L1, "image/svg+xml" },
        { "woff2"_L1, "font/woff2" },
        { "woff"_L1, "font/woff" },
        { "otf"_L1, "font/otf" },
        { "ttf"_L1, "font/ttf" },
        { "eot"_L1, "application/vnd.ms-fontobject" },
        { "sf2"_L1, "application/octet-stream" },
        { "sf3"_L1, "application/octet-stream" },
    } };
    const QString suffix = QFileInfo(filePath).suffix();
    const QString lowered = suffix.toLower();
    for (const auto &[extension, type] : known) {
        if (lowered == extension)
            return type;
    }
    // Qt reads outside of the system's cache of types where a name has a NUL in the place of a type's own letter.
    if (suffix.isEmpty() || suffix.contains(QChar::Null))
        return "application/octet-stream";
    return QMimeDatabase().mimeTypeForFile(u"x."_s + suffix, QMimeDatabase::MatchExtension).name().toLatin1();
}

Answer resolve(const QUrl &url, const QString &root)
{
    if (url.isEmpty() || !url.isValid())
        return Failure::BadUrl;
    QString path = url.path(QUrl::FullyDecoded);
    if (path.isEmpty() || path == "/"_L1)
        path = u"/index.html"_s;
    if (path.contains(QChar::Null))
        return Failure::FileDoesNotExist;

    const QString filePath = QDir::cleanPath(root + u'/' + path);
    if (!filePath.startsWith(root))
        return Failure::FileDoesNotExist;

    QFile file(filePath);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return Failure::FileDoesNotExist;
    const QByteArray body = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Failure::FileDoesNotExist;

    return Response{
        url,
        200,
        u"HTTP/1.1"_s,
        { { "Content-Type", mimeType(filePath) }, { "Content-Length", QByteArray::number(body.size()) },
            { "Cache-Control", "no-cache" } },
        body,
    };
}

} // namespace WebScheme
