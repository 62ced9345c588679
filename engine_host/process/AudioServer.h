#pragma once

#include <QProcessEnvironment>
#include <QStringList>

/// The sound server of the user's session, PulseAudio's or PipeWire's.
namespace AudioServer {

/// Where its clients look for it, as paths of sockets in the file system. Empty where it is on another machine.
QStringList socketPaths(const QProcessEnvironment &environment);

/// Whether somebody listens at one of the sockets; never waits. True where there is no socket to look at.
bool isReachable(const QStringList &socketPaths);

} // namespace AudioServer
