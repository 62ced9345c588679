#pragma once

/// The sizes of the score that a user can choose; 1 is the natural one.
namespace ZoomRange {

constexpr double smallest = 0.5;
constexpr double largest = 2.0;

} // namespace ZoomRange
