#pragma once

class QWidget;

namespace KeyWindow {

/// The window with the focus; while none has it, as when a menu closes, the first window of the application that is
/// seen and is no panel. Null where there is none.
QWidget *find();

} // namespace KeyWindow
