#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace grouptracker {

/// What no true observation exceeds; values beyond are damaged or in another unit.

constexpr double largestFrame = 1e15;  // whole numbers up to here are exact
constexpr double largestPerson = std::numeric_limits<std::uint32_t>::max();
constexpr double farthestPosition = 1e9;       // m
constexpr double farthestBox = 1e6;            // pixels
constexpr std::size_t longestRow = 64 * 1024;  // bytes of a line of numbers

}  // namespace grouptracker
