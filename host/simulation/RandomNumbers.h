#pragma once

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
  double uniform(double low, double high);
  /// One of 0 ... count - 1; `count` is at least 1.
  int below(int count);
  /// With mean 0; cut off at six deviations.
  double normal(double deviation);
  bool chance(double probability) { return uniform(0.0, 1.0) < probability; }

 private:
  std::mt19937_64 m_engine;
};

}  // namespace grouptracker
