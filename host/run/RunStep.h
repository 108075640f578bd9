#pragma once

#include "host/run/Decision.h"
#include "host/run/TrackedEvent.h"

#include <kel/kelDataImage.h>

#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace grouptracker {

struct InputFrame;

/// Where somebody was seen.
struct Sighting {
  cv::Point2f ground;  ///< metres
  cv::Rect box2D;      ///< pixels

  bool operator==(const Sighting&) const = default;
};

/// An actor of the input at one frame.
struct RunPerson {
  std::uint32_t id = 0;
  /// None for an actor without mobile, and in a run's file, which does not tell it.
  std::optional<Sighting> seen;

  bool operator==(const RunPerson&) const = default;
};

/// One mobile of a group.
struct RunMember {
  std::uint32_t mobile = 0;
  std::optional<std::uint32_t> person;  ///< none when no actor had the mobile as its current one
  /// On the ground, metres, at the reported frame; none in a group that is not visible, and in a
  /// run's file, which does not tell it.
  std::optional<cv::Point2f> place;

  bool operator==(const RunMember&) const = default;
};

/// The value of a property as JSON has it: null, a truth value, a number or a text in UTF-8. Whole
/// numbers are of the first type that holds them, and a number that is not finite is null, so that
/// a value that was written reads as the same.
using PropertyValue =
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string>;

struct RunProperty {
  std::string name;
  PropertyValue value;

  bool operator==(const RunProperty&) const = default;
};

/// One group as the process puts it out.
struct RunGroup {
  std::uint32_t id = 0;
  std::vector<RunMember> members;             ///< in the order of the process
  std::optional<cv::Point3f> position;        ///< mean of the members, metres; none without members
  std::optional<cv::Rect> box2D;              ///< around the members, pixels; none without members
  std::optional<std::array<float, 6>> box3D;  ///< two corners, metres; none without members
  std::vector<RunProperty> properties;        ///< all of them, by name

  // What the properties mean; `decodeProperties()` says it.
  bool isVisible = false;             ///< whether the members are those of the reported frame
  bool isCrowd = false;               ///< by its extent
  std::optional<std::int64_t> merge;  ///< the group absorbed last, -1 for none; none while not told
  std::optional<std::int64_t> split;  ///< the group that it split from last; as `merge`

  /// Makes the fields that follow from the properties agree with them.
  void decodeProperties();

  bool operator==(const RunGroup&) const = default;
};

/// All that one processed frame leaves behind. Decisions are delayed, so what it says is about an
/// earlier frame, the reported one. Values only: whether they come from a run or were read again
/// makes no difference to whom they are handed to.
struct RunStep {
  std::uint32_t frame = 0;                 ///< frames processed so far, from 1
  std::int32_t reportedFrame = 0;          ///< the frame that it is about; below 1 at first
  std::optional<std::int64_t> inputFrame;  ///< the input's own number of the reported frame
  std::vector<RunPerson> persons;          ///< the input's actors at the reported frame, in order
  std::vector<RunGroup> groups;            ///< in ascending order of ids
  std::vector<TrackedEvent> events;        ///< as `EventDetector` finds them, if somebody asked it
  std::vector<Decision> decisions;         ///< made at `frame`, if somebody read the diagnostics

  std::string place;                   ///< of the reported frame in the input, for messages
  std::filesystem::path imageFile;     ///< of the reported frame; empty when there is none
  QSharedPointer<kelDataImage> image;  ///< of the reported frame, when it is in memory only

  bool operator==(const RunStep&) const = default;
};

using RunSteps = std::vector<RunStep>;

/// The actors of an input frame, each with where its current mobile is.
std::vector<RunPerson> personsIn(const InputFrame& frame);

/// Fills in what a step says about the input: the frame's number, place and image, its persons, and
/// where the members of visible groups are.
void addInput(const InputFrame& frame, RunStep& step);

}  // namespace grouptracker
