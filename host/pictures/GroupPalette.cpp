#include "host/pictures/GroupPalette.h"

#include <fmt/format.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace grouptracker {

namespace {

constexpr std::array<std::uint32_t, paletteSize> palette{
    0x0072B2, 0xE69F00, 0x009E73, 0xD55E00, 0x56B4E9, 0xCC79A7, 0xF0E442,
    0x9900FF, 0x994433, 0x99CC77, 0x7755DD, 0x884477, 0xBB0000};

constexpr double brightest = 255.0;

/// What an eye makes of linear light, red, green and blue: the normal one, and those without the
/// cones for long, middle and short waves.
const std::array<cv::Matx33d, 4> eyes{
    cv::Matx33d::eye(),
    cv::Matx33d(0.152286, 1.052583, -0.204868, 0.114503, 0.786281, 0.099216, -0.003882, -0.048116,
                1.051998),
    cv::Matx33d(0.367322, 0.860646, -0.227968, 0.280085, 0.672501, 0.047413, -0.011820, 0.042940,
                0.968881),
    cv::Matx33d(1.255528, -0.076749, -0.178779, -0.078411, 0.930809, 0.147602, 0.004733, 0.691367,
                0.303900)};

using EyeViews = std::array<cv::Vec3d, eyes.size()>;

/// The linear light of a channel from 0 to 1 as sRGB has it.
double linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

/// Linear light, red, green and blue, in CIE L*a*b* under daylight (D65). By hand, as the tables
/// that OpenCV makes for its own take longer than all the rest of a short run.
cv::Vec3d toLab(const cv::Vec3d& light) {
  const cv::Matx33d toXyz(0.433953, 0.376219, 0.189828, 0.212671, 0.715160, 0.072169, 0.017758,
                          0.109477, 0.872766);  // relative to white
  const auto bend = [](double part) {
    constexpr double dark = 0.008856;
    return part > dark ? std::cbrt(part) : 7.787 * part + 16.0 / 116.0;
  };
  const cv::Vec3d xyz = toXyz * light;
  const double luminance = bend(xyz[1]);
  return {116.0 * luminance - 16.0, 500.0 * (bend(xyz[0]) - luminance),
          200.0 * (luminance - bend(xyz[2]))};
}

/// A colour in L*a*b* for each of the eyes.
EyeViews viewsOf(std::size_t index) {
  const cv::Scalar colour = paletteColour(index);
  const cv::Vec3d light(linear(colour[2] / brightest), linear(colour[1] / brightest),
                        linear(colour[0] / brightest));
  EyeViews views;
  for (std::size_t i = 0; i < eyes.size(); ++i) {
    cv::Vec3d seen = eyes[i] * light;
    for (int channel = 0; channel < 3; ++channel) {
      seen[channel] = std::clamp(seen[channel], 0.0, 1.0);
    }
    views[i] = toLab(seen);
  }
  return views;
}

}  // namespace

cv::Scalar paletteColour(std::size_t index) {
  constexpr std::uint32_t channel = 0xFF;
  const std::uint32_t colour = palette[index];
  return {static_cast<double>(colour & channel), static_cast<double>(colour >> 8U & channel),
          static_cast<double>(colour >> 16U)};
}

std::string paletteText(std::size_t index) {
  return fmt::format("#{:06x}", palette[index]);
}

double paletteDifference(std::size_t one, std::size_t other) {
  static const auto views = [] {
    std::array<EyeViews, paletteSize> all;
    for (std::size_t i = 0; i < paletteSize; ++i) {
      all[i] = viewsOf(i);
    }
    return all;
  }();
  double least = cv::norm(views[one].front() - views[other].front());
  for (std::size_t eye = 1; eye < eyes.size(); ++eye) {
    least = std::min(least, cv::norm(views[one][eye] - views[other][eye]));
  }
  return least;
}

}  // namespace grouptracker
