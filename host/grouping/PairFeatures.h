#pragma once

#include <array>
#include <cstddef>

namespace grouptracker {

/// What was seen of two persons around one moment. The window reaches from six seconds before it to
/// the end of the look-ahead; the recent window from one second before it; the history from when
/// both were first in view. Means are weighted by time.
struct PairFeatures {
  // Of the window.
  double meanDistance = 0.0;     ///< metres
  double largestDistance = 0.0;  ///< metres
  double shift = 0.0;            ///< how far one moved as the other sees it, first to last, metres
  double velocityDifference = 0.0;  ///< mean of |va - vb|, m/s
  double speedDifference = 0.0;     ///< difference of the mean speeds, m/s
  double speed = 0.0;               ///< mean of both, m/s
  double nearerOthers = 0.0;  ///< mean number of others who are nearer to one of the two, 0 to 5
  double crowd = 0.0;         ///< mean number of others within three metres of one of the two
  double along = 0.0;         ///< mean distance in the direction of their walking, metres
  double across = 0.0;        ///< mean distance sideways, metres
  // Of the recent window.
  double recentDistance = 0.0;            ///< as `meanDistance`
  double recentVelocityDifference = 0.0;  ///< as `velocityDifference`
  double recentShift = 0.0;               ///< as `shift`
  // Of the history.
  double firstDistance = 0.0;  ///< when first in view together, metres
  double arrivalGap = 0.0;     ///< between their arrivals, seconds
  double closeShare = 0.0;     ///< share of their common time within 1.2 m
  double nearShare = 0.0;      ///< share of their common time within 2 m
  double wayTogether = 0.0;    ///< way that both walked within 2 m of each other, metres
  double timeTogether = 0.0;   ///< since they were first in view together, seconds

  // What the weights of the above may depend on, each 0 to 1.
  double standing = 0.0;  ///< share of the window in which both stood
  double start = 0.0;     ///< 1 when one was there as the recording began: its arrival is unknown
  double appeared = 0.0;  ///< one stood there all at once: its arrival was not seen
};

/// A feature that has a curve of weights.
struct PairFeature {
  const char* name;  ///< in model files
  double PairFeatures::*value;
  const char* unit;
  bool needsArrivals = false;  ///< says nothing unless the arrivals of both were seen
};

inline constexpr std::array pairFeatures{
    PairFeature{"meanDistance", &PairFeatures::meanDistance, "m"},
    PairFeature{"largestDistance", &PairFeatures::largestDistance, "m"},
    PairFeature{"shift", &PairFeatures::shift, "m"},
    PairFeature{"velocityDifference", &PairFeatures::velocityDifference, "m/s"},
    PairFeature{"speedDifference", &PairFeatures::speedDifference, "m/s"},
    PairFeature{"speed", &PairFeatures::speed, "m/s"},
    PairFeature{"nearerOthers", &PairFeatures::nearerOthers, "persons"},
    PairFeature{"crowd", &PairFeatures::crowd, "persons"},
    PairFeature{"along", &PairFeatures::along, "m"},
    PairFeature{"across", &PairFeatures::across, "m"},
    PairFeature{"recentDistance", &PairFeatures::recentDistance, "m"},
    PairFeature{"recentVelocityDifference", &PairFeatures::recentVelocityDifference, "m/s"},
    PairFeature{"recentShift", &PairFeatures::recentShift, "m"},
    PairFeature{"firstDistance", &PairFeatures::firstDistance, "m", true},
    PairFeature{"arrivalGap", &PairFeatures::arrivalGap, "s", true},
    PairFeature{"closeShare", &PairFeatures::closeShare, ""},
    PairFeature{"nearShare", &PairFeatures::nearShare, ""},
    PairFeature{"wayTogether", &PairFeatures::wayTogether, "m"},
    PairFeature{"timeTogether", &PairFeatures::timeTogether, "s"},
};

}  // namespace grouptracker
