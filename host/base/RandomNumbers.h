#pragma once

#include <algorithm>
#include <cstdint>
#include <random>

namespace grouptracker {

/// Random numbers that are the same on every machine for the same seed: the engine's sequence is
/// fixed by the language, the standard library's distributions are not, so they are made here with
/// exact arithmetic only.
class RandomNumbers {
 public:
  explicit RandomNumbers(std::uint64_t seed) : m_engine(seed) {}

  /// Within [low, high).
  double uniform(double low, double high) {
    constexpr int unusedBits = 64 - 53;           // a double holds 53
    constexpr double steps = 9007199254740992.0;  // 2^53
    const double fraction = static_cast<double>(m_engine() >> unusedBits) / steps;
    return low + fraction * (high - low);
  }

  /// One of 0 ... count - 1; `count` is at least 1.
  int below(int count) { return std::min(static_cast<int>(uniform(0.0, count)), count - 1); }

  /// With mean 0; cut off at six deviations. The sum of twelve uniform numbers has variance 1 and
  /// is normal enough, without the logarithms and cosines that differ from machine to machine.
  double normal(double deviation) {
    constexpr int terms = 12;
    double sum = -terms / 2.0;
    for (int i = 0; i < terms; ++i) {
      sum += uniform(0.0, 1.0);
    }
    return sum * deviation;
  }

  bool chance(double probability) { return uniform(0.0, 1.0) < probability; }

 private:
  std::mt19937_64 m_engine;
};

}  // namespace grouptracker
