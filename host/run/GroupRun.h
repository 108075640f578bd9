#pragma once

#include "host/grouping/GroupFinder.h"
#include "host/people/InputFrame.h"
#include "host/run/RunStep.h"

#include <cstdint>
#include <deque>
#include <optional>

namespace grouptracker {

/// How the groups of a run are found.
struct GroupRunOptions {
  EvidenceModel model = EvidenceModel::builtIn();
  /// Seconds of the future that a decision may use; by default as long as the process waits before
  /// it decides, so that nothing comes later, but no longer than the built-in model has use for.
  std::optional<double> lookAhead;
  std::uint32_t delay = 0;            ///< frames that the process waits
  bool keepsImages = false;           ///< whether steps carry images that are in memory only
  bool processDrawsOnImages = false;  ///< such an image is then copied before the process has it
};

/// The groups of a run as people mean them: goes along with the frames that the process gets and
/// makes a step of each, with the groups that the evidence about pairs of people gives. Steps come
/// in order, one for each frame of the input, the last ones at the end. They have the type of the
/// process's own steps, so that whoever takes steps need not know whose groups they hold.
class GroupRun {
 public:
  explicit GroupRun(const GroupRunOptions& options) : m_options(options) {}

  /// Takes the next frame, before the process gets it; returns the steps that are decided now.
  RunSteps advance(const InputFrame& frame);
  /// The same without actors: a step that tells the number and time of the frame and its persons,
  /// who are all seen, in ascending order and each once.
  RunSteps advance(RunStep seen);
  /// Returns the remaining steps, decided with what is there; once, after the last frame.
  RunSteps finish();

 private:
  RunStep stepOf(const InputFrame& frame) const;
  double lookAhead(const PeopleFrame& second) const;
  void start(double lookAhead);
  RunSteps describe(const std::vector<FrameGroups>& decided);
  RunStep describe(const FrameGroups& decided);

  GroupRunOptions m_options;
  std::optional<GroupFinder> m_finder;  ///< none until the look-ahead is known
  std::optional<PeopleFrame> m_first;   ///< the first frame until then
  /// What the input said of the frames that are not decided, the latest last.
  std::deque<RunStep> m_noted;
  std::uint32_t m_frame = 0;  ///< taken so far
};

/// Who is in no group at a step of the evidence, ascending as its persons are.
std::vector<std::uint32_t> aloneIn(const RunStep& step);

/// The groups of a step of the evidence without what the input says about its people.
FrameGroups toFrameGroups(const RunStep& step);

}  // namespace grouptracker
