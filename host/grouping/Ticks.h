#pragma once

/// The rhythm in which groups are looked for. A tick is a frame at least `interval` after the tick
/// before, so that the same scene gives the same groups at any frame rate.
namespace grouptracker::ticks {

constexpr double interval = 0.3;       ///< seconds
constexpr double tolerance = 1e-6;     ///< seconds; moments that differ by less are the same
constexpr double usualLength = 0.4;    ///< seconds that the first tick stands for
constexpr double longestLength = 1.0;  ///< seconds that a tick stands for after a gap

}  // namespace grouptracker::ticks
