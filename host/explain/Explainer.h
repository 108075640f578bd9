#pragma once

#include "host/run/RunStep.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Tells in plain text why the tracker did what it did, from the decisions of a run's steps.
class Explainer {
 public:
  /// `threshold` is the coherence that groups must stay below.
  explicit Explainer(double threshold) : m_threshold(threshold) {}

  /// Takes the next step of the run. Decisions count frames from 1; where the steps tell the
  /// input's own numbers, the text names these instead.
  void add(const RunStep& step);

  /// The life of a group, a line per decision; only what is about `frame`, when it is given. Empty
  /// for a group about which nothing was decided.
  std::string explainGroup(int group, std::optional<std::int32_t> frame = std::nullopt) const;
  /// The decisions whose coherence is closest to the threshold, the closest first.
  std::string listUncertain(std::size_t count) const;
  /// `explainGroup()` of every group.
  std::map<std::uint32_t, std::string> explainAll() const;

 private:
  std::string lineOf(const Decision& decision) const;
  /// The line for the group that merged into another.
  std::string absorbedLineOf(const Decision& decision) const;
  std::string timeOf(const Decision& decision) const;
  std::string comparison(const Decision& decision) const;

  double m_threshold;
  std::vector<Decision> m_decisions;
  std::map<std::int32_t, std::int64_t> m_inputFrames;  ///< by reported frame
};

/// The coherence threshold out of a tracker's parameter file. A file that cannot be read or does
/// not hold it is an `InputError`.
double readCoherenceThreshold(const std::string& parameterFile);

}  // namespace grouptracker
