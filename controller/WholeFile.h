#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Files that are written whole or not at all: neither a full disk nor the end of the program leaves half of one.
namespace WholeFile {

enum class Durability {
    /// On the disk when write() returns, so that not even a power cut takes it away.
    OnDisk,
    /// With the system, which puts it on the disk in its own time; the end of the program does not take it away.
    WithSystem,
};

/// Puts `bytes` in the place of the file at `path`, or where none is; what a symbolic link names is replaced, not the
/// link. Where the folder takes no new file, the file itself is written to, and gets its old contents back when that
/// fails. Nothing is given back on success, otherwise the system's word for why not; the old file is as it was then.
std::optional<QString> write(const QString &path, const QByteArray &bytes, Durability durability);

/// Removes what programs that were killed while they wrote have left in `folder`.
void sweep(const QString &folder);

} // namespace WholeFile
