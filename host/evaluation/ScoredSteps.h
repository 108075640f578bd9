#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/grouping/FrameGroups.h"
#include "host/run/RunStep.h"

#include <cstdint>
#include <istream>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// What is scored: the groups of each frame of an input, in order.
using GroupedFrames = std::vector<FrameGroups>;

/// Everybody in view, ascending.
std::vector<Person> personsOf(const FrameGroups& frame);
std::vector<Person> personsOf(const RunStep& step);

/// The groups of two and more persons.
Grouping groupingOf(const FrameGroups& frame);
Grouping groupingOf(const RunStep& step);

/// Turns what the process puts out into groups: the visible ones of two persons and more. A group
/// comes out of others at the step at which its record of a merge or split appears or changes.
class ProcessGroups {
 public:
  /// None for a step that is about no frame of the input. Steps come in order.
  std::optional<FrameGroups> next(const RunStep& step);

 private:
  /// The records that a group had last; -1 for none.
  struct Records {
    std::int64_t merge = -1;
    std::int64_t split = -1;
  };

  std::vector<GroupId> originOf(const RunGroup& group);

  std::map<GroupId, Records> m_records;
  std::map<GroupId, std::int64_t> m_since;  ///< input frames
};

/// The groups of a groups file, or of a file of what the process put out, of which no more has to
/// be there than scores need. Bad input is an `InputError` with file and line.
GroupedFrames readScored(std::istream& in, const std::string& name);
GroupedFrames readScored(const std::string& path);

/// The seconds of each frame; without times the frames are taken to be 0.4 s apart, as where groups
/// are found.
std::vector<double> secondsOf(const GroupedFrames& run);

/// Whether a truth is one for other people than those of a run: none of its frames is there, or no
/// two members of a true group are ever in view together. The start of a sentence that the run's
/// name ends; none when the truth fits.
std::optional<std::string> whyAboutOthers(const GroupTruth& truth, const GroupedFrames& run);

/// Why a truth for a whole sequence may be one for other people who happen to have the same ids:
/// companions come and go together, and these do not. None when nothing speaks for it.
std::optional<std::string> doubtAboutPeople(const GroupTruth& truth, const GroupedFrames& run);

/// The frames about which the truth says something.
GroupedFrames annotated(const GroupedFrames& run, const GroupTruth& truth);

}  // namespace grouptracker
