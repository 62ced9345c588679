#pragma once

#include <QRectF>
#include <QString>

#include <optional>
#include <vector>

class QPDF;

/// Where one page lies on its paper. Boxes are in PDF units (1/72 inch), y upwards, before rotation.
struct PageBox {
    QRectF media;
    /// What a viewer shows: the part of the crop box within the media box, which may be nothing; the media box where
    /// there is no crop box, or one without area.
    QRectF crop;
    /// Clockwise turn for display: 0, 90, 180 or 270.
    int rotation = 0;
};

/// The boxes and the rotation of a PDF's pages, inherited values included, which Qt PDF does not tell.
namespace PageBoxes {

/// A page tree with more levels than this counts as one without pages: the drawing library would never come back from
/// one of some thousand levels. Honest files have two or three.
inline constexpr int deepest = 500;

/// In page order. Nothing when the file cannot be read as a PDF, or needs a password that is not empty. Damage that can
/// be repaired, such as a broken cross-reference table, is.
std::optional<std::vector<PageBox>> read(const QString &path);

/// The same of a document that is open already; nothing when its page tree cannot be walked.
std::optional<std::vector<PageBox>> read(QPDF &document);

} // namespace PageBoxes
