#pragma once

class QString;
class QWidget;

namespace WindowActivation {

/// Brings a window to the front and gives it the keyboard, with what the launcher has given for that; the window
/// manager may refuse without. A minimised window is shown as it was before.
/// @param token of a Launch; may be empty
void bringToFront(QWidget &window, const QString &token);

/// The time, in the X server's milliseconds, at which the user asked for a launch: what follows "_TIME" at the end of
/// an identifier of the Startup Notification Protocol. 0 where it does not say.
unsigned int launchTime(const QString &token);

} // namespace WindowActivation
