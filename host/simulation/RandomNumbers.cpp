#include "host/simulation/RandomNumbers.h"

#include <algorithm>

namespace grouptracker {

double RandomNumbers::uniform(double low, double high) {
  constexpr int unusedBits = 64 - 53;           // a double holds 53
  constexpr double steps = 9007199254740992.0;  // 2^53
  const double fraction = static_cast<double>(m_engine() >> unusedBits) / steps;
  return low + fraction * (high - low);
}

int RandomNumbers::below(int count) {
  return std::min(static_cast<int>(uniform(0.0, count)), count - 1);
}

// The sum of twelve uniform numbers has variance 1 and is normal enough for noise, without the
// logarithms and cosines that differ from machine to machine.
double RandomNumbers::normal(double deviation) {
  constexpr int terms = 12;
  double sum = -terms / 2.0;
  for (int i = 0; i < terms; ++i) {
    sum += uniform(0.0, 1.0);
  }
  return sum * deviation;
}

}  // namespace grouptracker
