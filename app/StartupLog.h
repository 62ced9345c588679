#pragma once

class QWidget;

namespace StartupLog {

/// Logs "window shown" under the category `quaverly.startup` (debug level) once `window` is on the screen.
void watch(QWidget &window);

} // namespace StartupLog
