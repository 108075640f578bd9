#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/report/ReportData.h"
#include "host/run/RunStep.h"

#include <cstdint>
#include <map>
#include <utility>

namespace grouptracker {

/// Tells a report what is true at the frames of a run, and at which of them that was found. Frames
/// that a truth leaves out do not count; a group of which one person at most is in view is none.
class TruthTeller {
 public:
  explicit TruthTeller(GroupTruth truth) : m_truth(std::move(truth)) {}

  void tell(const RunStep& step, ReportData& data);

 private:
  std::uint32_t idOf(const PersonGroup& group);

  GroupTruth m_truth;
  std::map<PersonGroup, std::uint32_t> m_ids;  ///< of groups whose truth tells none
};

}  // namespace grouptracker
