#pragma once

/// Ends the program when its orderly end takes too long, whatever its threads are doing. What runs outside of it, such
/// as a conversion, ends with it in either way.
namespace LastResort {

/// How long the orderly end may take, in milliseconds.
inline constexpr int endingTimeoutMs = 1800;

/// Lets arm() do its work from now on; without this it does nothing.
void prepare();

/// The end has begun. The first call counts. May be called by the handler of a signal.
void arm();

} // namespace LastResort
