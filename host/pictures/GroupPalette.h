#pragma once

#include <opencv2/core/types.hpp>

#include <array>
#include <cstddef>
#include <string>

namespace grouptracker {

/// The colours of groups in all pictures and in the report. The first seven are those of M. Okabe
/// and K. Ito, "Color Universal Design", 2008, without black; the others were added one by one,
/// each time the colour that differs most from all before it and from grey for the normal eye and
/// for the three kinds of colour-blind ones, as `paletteDifference()` has it.
inline constexpr std::size_t paletteSize = 13;

/// A colour of the palette, blue-green-red.
cv::Scalar paletteColour(std::size_t index);
/// The same as "#rrggbb".
std::string paletteText(std::size_t index);

/// How clearly two colours of the palette differ for the eye that sees the least difference: the
/// distance in CIE L*a*b*, for normal eyes and those without one kind of cones, as simulated by
/// G. Machado, M. Oliveira and L. Fernandes, "A Physiologically-based Model for Simulation of Color
/// Vision Deficiency", 2009, severity 1. Some 2 can just be told apart side by side.
double paletteDifference(std::size_t one, std::size_t other);

}  // namespace grouptracker
