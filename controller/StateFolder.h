#pragma once

#include <QString>

namespace StateFolder {

/// Where the program keeps what the user did not set, such as the window's place: ~/.local/state/quaverly, or where
/// XDG_STATE_HOME has it. Qt 6.4 has no name for it.
QString path();

} // namespace StateFolder
