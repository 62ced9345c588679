#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include <optional>

/// Where the window was when it was closed. It is a file of its own: what can be lost without harm does not belong to
/// the settings.
namespace WindowMemory {

struct Place {
    /// Without its frame, and as it is when it is not maximised.
    QRect geometry;
    bool maximized = false;
    int sidebarWidth = 0;
    bool fretboard = false;
    bool leftHandedFretboard = false;

    bool operator==(const Place &) const = default;
};

/// The file in the user's folder for such things (XDG_STATE_HOME).
QString userFilePath();

/// Nothing where there is no such file, or one that cannot be understood.
std::optional<Place> read(const QString &filePath);
/// A failure has nobody to go to.
void write(const QString &filePath, const Place &place);

/// `geometry` as large as fits on the screen that shows most of it, and wholly on it. Where none shows any of it, that
/// is the first one.
/// @param screens what windows may cover of each
QRect pulledIn(const QRect &geometry, const QList<QRect> &screens);

} // namespace WindowMemory
