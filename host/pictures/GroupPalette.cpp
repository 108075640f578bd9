#include "host/pictures/GroupPalette.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

// Steps of the golden angle never come close to a hue that was used shortly before.
constexpr double goldenAngle = 137.508;  // degrees
constexpr double saturation = 0.65;
constexpr double lightness = 0.55;

/// One channel of a colour given by hue in degrees, saturation and lightness.
double channel(double hue, double offset) {
  const double k = std::fmod(offset + hue / 30.0, 12.0);
  const double amplitude = saturation * std::min(lightness, 1.0 - lightness);
  return lightness - amplitude * std::max(-1.0, std::min({k - 3.0, 9.0 - k, 1.0}));
}

}  // namespace

cv::Scalar colourOf(std::uint32_t group) {
  constexpr double brightest = 255.0;
  const double hue = std::fmod(group * goldenAngle, 360.0);
  return {brightest * channel(hue, 4.0), brightest * channel(hue, 8.0),
          brightest * channel(hue, 0.0)};
}

}  // namespace grouptracker
