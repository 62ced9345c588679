#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>

#include <variant>

/// Which answer a request for an application resource gets: a pure function of the address and the served folder.
namespace WebScheme {

/// A complete answer, whatever part of it Chromium at hand can be given.
struct Response {
    QUrl url;
    int status = 200;
    QString httpVersion;
    /// In sending order: Content-Type, Content-Length, Cache-Control.
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;

    /// The value of a header, empty when there is none of that name.
    QByteArray header(const QByteArray &name) const;
};

enum class Failure {
    BadUrl,
    FileDoesNotExist,
};

using Answer = std::variant<Response, Failure>;

/// Answers a request for `url` out of the folder `root` (absolute, without "." and ".." components).
///
/// Scheme, host, query and fragment do not count; an empty path means the index page. Nothing outside `root` is read.
Answer resolve(const QUrl &url, const QString &root);

/// The Content-Type for a file, judged by its name alone.
QByteArray mimeType(const QString &filePath);

} // namespace WebScheme
