#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// A file in an archive; a name that ends in a slash is a folder.
struct Member {
    QString name;
    QByteArray bytes;
};

/// Writes a zip archive with the members in their order.
/// @param password locks all members when it is not empty
void writeArchive(const QString &path, const QList<Member> &members, const QByteArray &password = {});

/// The bytes of a member; empty where the archive or the member cannot be read.
QByteArray memberOf(const QString &archivePath, const QByteArray &name);
