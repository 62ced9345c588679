#pragma once

#include "pdf/process/PageBox.h"

#include <QByteArray>

#include <optional>
#include <vector>

class QPDF;

/// The boxes and the rotation of a PDF's pages, inherited values included, which Qt PDF does not tell.
namespace PageBoxes {

/// A page tree with more levels than this counts as one without pages: the drawing library would never come back from
/// one of some thousand levels. Honest files have two or three.
inline constexpr int deepest = 500;

/// In page order. Nothing when `file`, a whole file's bytes, cannot be read as a PDF, or needs a password that is not
/// empty. Damage that can be repaired, such as a broken cross-reference table, is.
/// @param circular set where a node of the page tree is met a second time, of which the drawing library may never be
/// done
std::optional<std::vector<PageBox>> read(const QByteArray &file, bool *circular = nullptr);

/// The same of a document that is open already; nothing when its page tree cannot be walked.
std::optional<std::vector<PageBox>> read(QPDF &document, bool *circular = nullptr);

} // namespace PageBoxes
