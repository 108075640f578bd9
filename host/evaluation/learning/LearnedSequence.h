#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/ScoredSteps.h"
#include "host/evaluation/learning/PairExamples.h"
#include "host/grouping/PeopleFrame.h"

#include <limits>
#include <string>
#include <vector>

namespace grouptracker {

/// An annotated recording to learn from.
class LearnedSequence {
 public:
  /// `lookAhead`: seconds, 0 or more.
  LearnedSequence(std::string name, std::vector<PeopleFrame> frames, GroupTruth truth,
                  double lookAhead);

  const std::string& name() const { return m_name; }
  const GroupTruth& truth() const { return m_truth; }
  const PairExamples& examples() const { return m_examples; }
  /// The middle between the first and the last frame, seconds.
  double middle() const { return m_middle; }
  /// Examples before see nothing of what is behind the middle, seconds.
  double endOfFirstHalf() const { return m_middle - m_lookAhead; }

  /// The groups that a model finds.
  GroupedFrames groupsBy(const EvidenceModel& model) const;
  /// How good groups are from some moment on: windowed F1; where the truth lists less than half of
  /// the frames, the F1 of correct groups at T = 2/3.
  double scoreOf(const GroupedFrames& groups,
                 double from = -std::numeric_limits<double>::infinity()) const;

 private:
  std::string m_name;
  std::vector<PeopleFrame> m_frames;
  GroupTruth m_truth;
  double m_lookAhead;  ///< seconds
  double m_middle = 0.0;
  PairExamples m_examples;
};

}  // namespace grouptracker
