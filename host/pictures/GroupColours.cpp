#include "host/pictures/GroupColours.h"

#include "host/pictures/GroupPalette.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <limits>

namespace grouptracker {

namespace {

constexpr std::size_t moment = 50;  // steps for which a group that is gone keeps its colour

}  // namespace

void GroupColours::add(const RunStep& step) {
  ++m_steps;
  std::erase_if(m_lately,
                [this](const auto& seen) { return seen.second.atStep + moment < m_steps; });
  for (const RunGroup& group : step.groups) {
    if (!group.isVisible || !group.position) {
      continue;
    }
    const cv::Point2f place(group.position->x, group.position->y);
    const auto known = m_colours.find(group.id);
    const std::size_t colour = known == m_colours.end() ? choose(place) : known->second;
    m_colours.emplace(group.id, colour);
    // Who is left of a group alone is drawn quietly and needs no colour for himself.
    if (group.members.size() > 1 || known == m_colours.end()) {
      m_lately[group.id] = {colour, place, m_steps};
    }
  }
}

// One more than the difference: of two that are taken, the one whose holder is farther away, or was
// last seen longer ago.
std::size_t GroupColours::choose(const cv::Point2f& place) const {
  constexpr double near = 10.0;    // metres at which a difference counts half
  constexpr double fading = 20.0;  // steps after which it does
  std::size_t best = 0;
  double bestDifference = -1.0;
  for (std::size_t colour = 0; colour < paletteSize; ++colour) {
    double least = std::numeric_limits<double>::max();
    for (const auto& [group, seen] : m_lately) {
      const double away =
          cv::norm(seen.place - place) / near + static_cast<double>(m_steps - seen.atStep) / fading;
      least = std::min(least, (1.0 + paletteDifference(colour, seen.colour)) * (1.0 + away));
    }
    if (least > bestDifference) {
      best = colour;
      bestDifference = least;
    }
  }
  return best;
}

std::size_t GroupColours::indexOf(std::uint32_t group) const {
  const auto colour = m_colours.find(group);
  return colour == m_colours.end() ? 0 : colour->second;
}

cv::Scalar GroupColours::colourOf(std::uint32_t group) const {
  return paletteColour(indexOf(group));
}

}  // namespace grouptracker
