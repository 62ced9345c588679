#pragma once

#include <QByteArray>

/// What Chromium has to be started with for the page to be a quick and modest one:
///
/// - Threads may share memory. Samples reach the audio thread without messages, which would leave it garbage to
/// collect.
/// Otherwise only pages of an isolated origin may, which a scheme of an application's own cannot be before Qt 6.6.
/// - The page says when garbage is collected after a score was opened. V8's memory reducer does it about fifteen
/// seconds later, three times in turn, when music plays.
/// - Nothing leaves the program. Chromium's peer connections (WebRTC) ask neither the interceptor nor the page's
/// policy. Here they may use a proxy alone, and the proxy is the discard port of this machine.
/// - Chromium takes no media keys, nor is it a media player on the session bus: the program is that.
/// - No process waits for others without a sandbox to be made of it. The audio service is the only one, and is started
/// as it is: 11 MB less.
/// - Cameras are looked for in this process. Chromium does so whenever the page asks for audio outputs, otherwise in a
/// process of its own that takes 23 MB and stays for some seconds.
namespace ChromiumSwitches {

/// `flags` of Chromium, separated by spaces, with these in them. What they say otherwise stays.
QByteArray flagsFor(const QByteArray &flags);

/// Writes them into the environment. To be called before the application object exists.
void adapt();

} // namespace ChromiumSwitches
