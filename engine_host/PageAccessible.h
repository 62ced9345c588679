#pragma once

class QWidget;

/// What assistive tools are told of the page's place while Chromium tells them nothing of what is in it. Left alone,
/// that place is a document without a name and a content that always claims the focus.
namespace PageAccessible {

/// Whether Chromium describes the page itself. With Qt 6.4 it does so only where the user's environment demands it.
bool isLeftToChromium();

/// Makes the toolkit ask here for every EngineView; later calls do nothing.
void install();

/// `surface`, which Chromium draws on, is the score from now on.
void describe(QWidget &surface);

} // namespace PageAccessible
