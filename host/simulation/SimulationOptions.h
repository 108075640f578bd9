#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace grouptracker {

/// What the user asks of a simulated scene.
struct SimulationOptions {
  std::uint64_t seed = 1;
  int people = 30;              ///< who come in the course of the scene
  std::vector<int> groupSizes;  ///< of groups, 2 to 6; empty: drawn for `groupShare` of the people
  double groupShare = 0.6;      ///< share of the people who come in groups, for drawn groups
  int frames = 300;
  double rate = 10.0;   ///< frames a second
  int joins = 1;        ///< people on their own who join a group
  int leaves = 1;       ///< people who leave their group of three or more
  int merges = 1;       ///< groups that join another group
  int splits = 1;       ///< groups of four or more that part
  double missed = 0.0;  ///< probability that a person in view is not observed at a frame
  double noise = 0.0;   ///< deviation of observed positions, metres, in x and in y
  bool images = false;  ///< whether frames are rendered
  std::string outputFolder;
};

inline constexpr int smallestGroup = 2;
inline constexpr int largestGroup = 6;

}  // namespace grouptracker
