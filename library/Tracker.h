#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#define GROUPTRACKER_EXPORT __attribute__((visibility("default")))

namespace grouptracker {

/// Somebody whom a tracker of persons sees at one frame. The place on the ground, the box in the
/// image or both are there; a box alone needs a camera.
struct SeenPerson {
  std::uint32_t id = 0;                                ///< that the tracker gave
  std::optional<std::array<double, 2>> position = {};  ///< of the feet on the ground, metres
  std::optional<std::array<double, 4>> box = {};       ///< left, top, width, height, pixels
};

/// People who belong together at one frame.
struct TrackerGroup {
  std::uint32_t id = 0;                ///< from 1, never used again
  std::vector<std::uint32_t> members;  ///< two or more, in view at the frame, ascending
  std::int64_t since = 0;              ///< number of the first frame that lists the group
  std::array<double, 2> position{};    ///< mean of the members on the ground, metres
  double confidence = 0.0;             ///< 0 to 1, how sure it is that these belong together
  /// Groups of the frame before out of which this one came by a merge or a split, ascending.
  std::vector<std::uint32_t> from;

  bool operator==(const TrackerGroup&) const = default;
};

/// Something that happened to a group from one frame to the next.
struct TrackerEvent {
  std::string kind;  ///< created, split, merged, joined, left, ended or removed
  std::uint32_t group = 0;
  std::optional<std::uint32_t> other;  ///< the one that merged into it, or that it split from
  std::vector<std::uint32_t> persons;  ///< first members, those who came along, joined or left

  bool operator==(const TrackerEvent&) const = default;
};

/// Who belongs together at one frame.
struct TrackerStep {
  std::optional<std::int64_t> frame;  ///< its number; none while no frame is decided yet
  std::optional<double> time;         ///< seconds
  std::vector<TrackerGroup> groups;   ///< in ascending order of ids; nobody is in two of them
  std::vector<std::uint32_t> alone;   ///< everybody else in view, ascending
  std::vector<TrackerEvent> events;   ///< since the frame before

  bool operator==(const TrackerStep&) const = default;
};

/// The step as a line of a groups file, with its end.
GROUPTRACKER_EXPORT std::string toLine(const TrackerStep& step);

/// How a tracker is set up. Texts are empty for what is not wished.
struct TrackerSettings {
  double rate = 25.0;  ///< calls of `update()` a second
  /// The process's 47 parameters; without a file a built-in set that suits the rate. The groups
  /// depend on one of them only: how long is waited before a frame is decided.
  std::string parameterFile;
  std::vector<std::string> parameterChanges;  ///< "label=value", on top
  std::string calibrationFile;                ///< a camera, or a homography as three lines
  /// Row by row, from (column, row, 1) in the image to (x, y, 1) on the ground, instead of a file.
  std::optional<std::array<double, 9>> homography;
  std::optional<std::array<int, 2>> imageSize;  ///< width, height; of use beside a homography
  std::string modelFile;                        ///< of the evidence; the built-in one without it
  std::string modelText;                        ///< the same, as text
  /// Seconds of the future that a decision may use; as long as the process waits by default, at
  /// most 3.2.
  std::optional<double> lookAhead;
  bool runsProcess = false;  ///< whether the process works, too, see `Tracker::actorsLine()`
  /// Gets what the process prints at each frame; it is then run, too.
  std::function<void(const std::string&)> onDiagnostics;
};

/// Says who walks with whom while a tracker of persons says who is where: one call a frame.
///
///     grouptracker::Tracker groups({.rate = 10});
///     for (each frame) {
///       const auto step = groups.update({{7, {{1.2, 3.4}}}, {8, {{1.9, 3.5}}}});
///       for (const auto& group : step.groups) ...
///     }
///     for (const auto& step : groups.finish()) ...
///
/// What follows confirms or revokes what was seen, so that the step is about an earlier frame, as
/// many calls back as fit into the look-ahead; it says which. There may be any number of trackers,
/// in any threads; none knows of the others. Wrong settings and input are a
/// `std::invalid_argument` whose text is the line that the program prints, what goes wrong inside
/// is a `std::runtime_error`.
class GROUPTRACKER_EXPORT Tracker {
 public:
  explicit Tracker(const TrackerSettings& settings = {});
  Tracker(const Tracker&) = delete;
  Tracker& operator=(const Tracker&) = delete;
  ~Tracker();

  /// Takes the people of the next frame in any order, each once, and returns the oldest step that
  /// is decided and was not handed out. `time` is in seconds and never goes back; by default frames
  /// follow each other at the rate. `frame` is the input's own number, which grows; by default
  /// frames count from 1. A frame that is wrong is left out as a whole.
  TrackerStep update(const std::vector<SeenPerson>& people, std::optional<double> time = {},
                     std::optional<std::int64_t> frame = {});
  /// The further steps that are decided by now, which the next calls would hand out one by one.
  /// There are some when frames took longer to follow than before.
  std::vector<TrackerStep> decided();
  /// The steps of all remaining frames, decided without a future; once, after the last frame.
  std::vector<TrackerStep> finish();

  /// What the process put out at the latest frame, as a line of an actors file; empty before the
  /// first frame and when the process is not run.
  std::string actorsLine() const;
  /// Frames taken so far.
  std::uint64_t frames() const;

 private:
  class State;
  std::unique_ptr<State> m_state;
};

}  // namespace grouptracker
