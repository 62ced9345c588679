#pragma once

/// The filter on what this process may ask of the kernel.
namespace SystemCalls {

/// From now on every request is answered as if the kernel did not know it, but those for memory, time, threads, and
/// reading from and writing to what is open. False when the kernel refuses the filter.
///
/// A list of what is allowed, as a program for the kernel's packet filter (seccomp(2)): a request that a later library
/// makes fails by itself, and what that library does without stays safe.
/// @param openFiles whether files may be opened for reading
bool allowOnlyDrawing(bool openFiles);

} // namespace SystemCalls
