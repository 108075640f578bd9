#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
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
  /// Length of the scene. The world then lives by a clock of its own, whatever the rate at which it
  /// is looked at; without it, by the frames.
  std::optional<double> seconds;
  double rate = 10.0;        ///< frames a second
  int streams = 0;           ///< further people, in two dense streams that pass each other
  std::vector<int> circles;  ///< sizes of further groups that stand and talk
  int waiting = 0;           ///< further people who wait, each alone, some side by side
  int queue = 0;             ///< further people who queue, each alone
  int joins = 1;             ///< people on their own who join a group
  int leaves = 1;            ///< people who leave their group of three or more
  int merges = 1;            ///< groups that join another group
  int splits = 1;            ///< groups of four or more that part
  double missed = 0.0;       ///< probability that a person in view is not observed at a frame
  double noise = 0.0;        ///< deviation of observed positions, metres, in x and in y
  double jitter = 0.0;   ///< deviation of an error that lasts about a second, metres, in x and in y
  double gaps = 0.0;     ///< how often a person is lost for a while, per minute
  double renamed = 0.0;  ///< share of the lost who come back under a new id
  double switches = 0.0;  ///< how often two who are near exchange their ids, per minute
  bool images = false;    ///< whether frames are rendered
  std::string outputFolder;

  /// Seconds.
  double duration() const { return seconds.value_or(frames / rate); }
  int totalFrames() const {
    return seconds ? std::max(1, static_cast<int>(std::ceil(*seconds * rate))) : frames;
  }
};

inline constexpr int smallestGroup = 2;
inline constexpr int largestGroup = 6;
inline constexpr int largestCircle = 12;

}  // namespace grouptracker
