#pragma once

class QByteArray;
class QString;

namespace RootSandbox {

/// The web engine refuses to run as root with its sandbox on. Turns the sandbox off for root, and says so in the log;
/// does nothing for anybody else. Has to run before the web engine starts.
void adapt();

/// The engine's flags after adapt() with the given flags before it.
QByteArray flagsFor(bool isRoot, const QByteArray &flags);

} // namespace RootSandbox
