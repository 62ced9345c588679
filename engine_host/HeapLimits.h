#pragma once

#include <QProcessEnvironment>

/// How the C library keeps memory that was freed, in the program's process and in the web engine's. What opening a
/// score takes for a moment would otherwise stay, and more of it with each score: 50 MB after a hundred.
///
/// - All threads of the web engine's processes allocate from one heap instead of up to eight for each processor; what
/// is
///   freed in one heap is of no use to the others.
/// - Large blocks are mapped on their own, and free memory at the end of a heap is given back. The library raises both
///   limits to up to 64 MB when a large block is freed, unless they are set.
///
/// Other C libraries than GNU's take no notice.
namespace HeapLimits {

/// `environment` with the limits in it, under the names by which the C library of a process to come looks for them.
/// What the user wants stays.
QProcessEnvironment limited(QProcessEnvironment environment);

/// Limits this process but for the number of its heaps, and through the environment those that it starts from then on.
/// To be called before the web engine starts, and while there is no other thread.
void adapt();

} // namespace HeapLimits
