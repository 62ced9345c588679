#pragma once

#include <QProcessEnvironment>
#include <QStringList>

/// The sound server of the user's session, PulseAudio's or PipeWire's.
namespace AudioServer {

/// How much of it is there. PipeWire's server for PulseAudio's clients outlives PipeWire: it listens, and plays
/// nothing. A client that comes meanwhile may make it useless for all, so it counts as away while PipeWire's socket is
/// left.
enum class Presence { Away, Listening, WithPipeWire };

/// Paths in the file system.
struct Sockets {
    /// Where its clients look for it. Empty where it is on another machine.
    QStringList server;
    /// Where PipeWire itself would be.
    QString pipeWire;
};

Sockets sockets(const QProcessEnvironment &environment);

/// Who listens at the sockets; never waits. A server on another machine counts as listening.
Presence presence(const Sockets &sockets);

} // namespace AudioServer
