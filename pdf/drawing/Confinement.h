#pragma once

#include <QtGlobal>

/// What this process gives up before it reads a stranger's file. Nothing of it can be taken back.
namespace Confinement {

/// Has this process end when the other end of the pipe `lifeline` is closed, whatever it is doing. False when the other
/// end is closed already.
bool endWith(int lifeline);

/// Keeps the open files `first` and `second`, standard input, output and error, and closes all others.
void keepOnly(int first, int second);

/// Bounds what this process may have in memory for itself, in bytes; no files are written and none are left when it
/// crashes.
void limit(qint64 memory);

/// From now on no privilege is gained, no file opened but the system's fonts, for reading, no process started, and
/// nothing of the network reached. Where the kernel cannot tell fonts from other files, no file at all is opened: text
/// whose font the document does not bring is drawn with another one then. False when the kernel refuses.
bool seal();

} // namespace Confinement
