#pragma once

#include "host/base/InputError.h"
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
  /// None for an actor without mobile, and in a file of steps, which does not tell it.
  std::optional<Sighting> seen;

  bool operator==(const RunPerson&) const = default;
};

/// One member of a group.
struct RunMember {
  std::optional<std::uint32_t> mobile;  ///< none in a group that the evidence makes, of persons
  std::optional<std::uint32_t> person;  ///< none when no actor had the mobile as its current one
  /// On the ground, metres, at the reported frame; none in a group that is not visible, and in a
  /// file of steps, which does not tell it.
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

/// One group, as the process puts it out or as the evidence makes it.
struct RunGroup {
  std::uint32_t id = 0;
  std::vector<RunMember> members;       ///< in the order of the process, or ascending
  std::optional<cv::Point3f> position;  ///< mean of the members, metres; none without members
  /// Around the members, pixels; none without members, and none of the evidence's groups where
  /// members have no box or the input is not there.
  std::optional<cv::Rect> box2D;

  // Of the evidence's groups only.
  std::optional<std::int64_t>
      since;                         ///< the input's number of the first frame that lists the group
  std::optional<double> confidence;  ///< 0 to 1, how sure it is that these belong together
  /// Groups of the step before out of which this one came by a merge or a split, ascending.
  std::vector<std::uint32_t> from;

  // Of the process's groups only.
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

/// Whose groups a step holds.
enum class GroupSource : std::uint8_t {
  process,   ///< what the process put out: actors that stand for groups
  evidence,  ///< groups as people mean them, see `GroupRun`
};

/// All that one frame leaves behind. Decisions are delayed, so what it says is about an earlier
/// frame, the reported one. Values only: whether they come from a run or were read again makes no
/// difference to whom they are handed to.
struct RunStep {
  GroupSource source = GroupSource::process;
  std::uint32_t frame = 0;  ///< frames processed so far, from 1; of evidence the reported one
  std::int32_t reportedFrame = 0;          ///< the frame that it is about; below 1 at first
  std::optional<std::int64_t> inputFrame;  ///< the input's own number of the reported frame
  std::optional<double> time;  ///< seconds of the reported frame; none of the process's groups
  /// The input's actors at the reported frame: in order; of evidence those in view, ascending.
  std::vector<RunPerson> persons;
  std::vector<RunGroup> groups;      ///< in ascending order of ids
  std::vector<TrackedEvent> events;  ///< as `EventDetector` finds them, if somebody asked it
  std::vector<Decision> decisions;   ///< made at `frame`, if somebody read the diagnostics

  InputPlace place;                    ///< of the reported frame in the input, for messages
  std::filesystem::path imageFile;     ///< of the reported frame; empty when there is none
  QSharedPointer<kelDataImage> image;  ///< of the reported frame, when it is in memory only

  bool operator==(const RunStep&) const = default;
};

using RunSteps = std::vector<RunStep>;

/// The actors of an input frame, each with where its current mobile is.
std::vector<RunPerson> personsIn(const InputFrame& frame);

/// A time as steps tell it, to the microsecond; seconds.
std::optional<double> toldTime(const std::optional<double>& time);

/// Fills in what a step says about the input: the frame's number, place and image, its persons, and
/// where the members of visible groups are.
void addInput(const InputFrame& frame, RunStep& step);

/// Fills in where the members of the evidence's groups are, and the boxes around them, as far as
/// the step's persons tell it.
void placeMembers(RunStep& step);

}  // namespace grouptracker
