#pragma once

/// The speeds that a user can choose, in percent of the written one.
namespace SpeedRange {

constexpr double slowest = 25;
constexpr double fastest = 200;

} // namespace SpeedRange
