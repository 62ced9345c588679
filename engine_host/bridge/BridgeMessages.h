#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <variant>

/// Everything the page ever says to the program: eight messages, told apart by their "type".
///
/// A field that is missing or of the wrong kind takes the value that the member's initialiser shows; it never spoils
/// the rest of its message. Times are milliseconds of score time.
namespace BridgeMessages {

/// The page's functions exist and it can take a score.
struct Ready { };

/// Sound can start.
struct PlayerReady { };

struct TrackEntry {
    int index = 0;
    QString name;

    bool operator==(const TrackEntry &) const = default;
};

struct Score {
    QString title;
    QString artist;
    /// Nothing when the message carries no list of dictionaries; entries without an integer "index" are left out.
    std::optional<QList<TrackEntry>> tracks;
    bool hasBackingTrack = false;
};

struct State {
    bool playing = false;
};

struct Position {
    double currentTime = 0;
    double endTime = 0;
};

struct Error {
    QString message;
};

/// The answer to exportGp(): a Guitar Pro file in base64.
struct GpData {
    QString data;
    QString title;
};

/// A rendering is finished.
struct Rendered { };

/// A well-formed message whose type this program does not know.
struct Unknown { };

using Message = std::variant<Unknown, Ready, PlayerReady, Score, State, Position, Error, GpData, Rendered>;

/// Reads one page message; nothing when it has no text under "type". Types are compared case-sensitively.
std::optional<Message> parse(const QVariantMap &message);

/// A readable one-line form of a message value: `["type": "ready"]`.
QString describe(const QVariant &value);

} // namespace BridgeMessages
