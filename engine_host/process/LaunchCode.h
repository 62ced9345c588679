#pragma once

/// The code and the constants of the libraries that only the launch needed. The kernel keeps what was read of them in
/// this process for as long as it has room: 90 of the window's 127 MB.
namespace LaunchCode {

/// Lets this process go of the code and the constants of all libraries. What is used comes back from the page cache, 64
/// KB with each page fault; the rest may leave the page cache, too, where memory is short. Takes some milliseconds,
/// from any thread.
///
/// Does nothing while a debugger has this process: its breakpoints are in that code.
void giveBack();

} // namespace LaunchCode
