#pragma once

#include "host/output/RunFile.h"
#include "host/people/InputFrame.h"
#include "host/run/Decision.h"
#include "host/run/EventDetector.h"

#include <cstddef>
#include <istream>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

/// The steps of a run out of its groups file, as the run itself handed them out: with the events,
/// and with everything about the input and all decisions when these are given once more.
class RunReplay {
 public:
  /// `name` is the groups file's name in messages. The stream must outlive the replay.
  RunReplay(std::istream& in, const std::string& name) : m_reader(in, name) {}

  /// Takes places and images from the input that the run had, called `name` in messages. It must
  /// outlive the replay.
  void takeInputFrom(FrameSource& input, const std::string& name);

  /// Takes what the tracker decided in the run, in order of the frames at which it did. Each step
  /// gets its own; those of a frame that is not in the groups file are left out.
  void takeDecisions(std::vector<Decision> decisions) { m_decisions = std::move(decisions); }

  /// Replaces `step` by the next one; false at the end of the file. What is wrong in the file, or
  /// is about a frame that the input does not have, is an `InputError`.
  bool next(RunStep& step);

  /// The error for a problem that the replay's user finds in the step that was read last.
  InputError error(const std::string& problem) const { return m_reader.error(problem); }

 private:
  void findInput(std::int64_t number);
  void addDecisions(RunStep& step);

  RunFileReader m_reader;
  EventDetector m_detector;
  FrameSource* m_input = nullptr;  ///< null when it is not given
  std::string m_inputName;
  InputFrame m_inputFrame;
  bool m_isAtFrame = false;  ///< whether `m_inputFrame` is one
  std::vector<Decision> m_decisions;
  std::size_t m_nextDecision = 0;  ///< the first of those that are not of an earlier frame
};

}  // namespace grouptracker
