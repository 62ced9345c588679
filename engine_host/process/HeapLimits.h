#pragma once

#include <QProcessEnvironment>

/// How the C library keeps memory that was freed, in the program's process and in Chromium's. What opening a
/// score takes for a moment would otherwise stay:
///
/// - All threads share two heaps. The library gives each thread one, up to eight for each processor, and what is freed
///   in one heap is of no use to the others. With a single one everybody would be in the audio thread's way.
/// - Large blocks are mapped on their own, and free memory at the end of a heap is given back. The library raises both
///   limits to up to 64 MB when a large block is freed, unless they are set.
namespace HeapLimits {

/// `environment` with the limits in it, under the names by which the C library of a process to come looks for them.
/// What the user wants stays.
QProcessEnvironment limited(QProcessEnvironment environment);

/// Limits this process, and through the environment those that it starts from then on. To be called before Chromium
/// starts, and while there is no other thread.
void adapt();

} // namespace HeapLimits
