#pragma once

#include "pdf/conversion/Result.h"

#include <QByteArray>
#include <QStringList>

namespace PDFConverter {

/// The compressed MusicXML files (".mxl" in any case) at any depth below `folder`, in the order of the inputs whose
/// names without extension they bear; an input without a result is left out, and so is a result of no input. When no
/// result bears an input's name, all of them in the order of their paths.
/// @param order the files that Audiveris was given
QStringList collectMxls(const QString &folder, const QStringList &order);

/// Beyond every score, and within what a desktop holds: the engine's scores take some 100 KiB a page.
constexpr qint64 mostScoreBytes = qint64(32) << 20;

/// The contents of the archive's members outside its folder "META-INF", in archive order, one after the other. Fails
/// with "Could not unpack NAME." when the archive is broken, holds nothing, or holds more than `most` bytes, which are
/// counted while they are unpacked.
Result<QByteArray> extractScoreXml(const QString &file, qint64 most = mostScoreBytes);

} // namespace PDFConverter
