#pragma once

class QByteArray;
class QString;

namespace RootSandbox {

/// Chromium refuses to run as root with its sandbox on. Turns the sandbox off for root, and says so in the log;
/// does nothing for anybody else. Has to run before Chromium starts.
void adapt();

/// Chromium's flags after adapt() with the given flags before it.
QByteArray flagsFor(bool isRoot, const QByteArray &flags);

} // namespace RootSandbox
