#pragma once

#include "host/explain/DecisionLog.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace grouptracker {

/// Tells in plain text why the tracker did what it did.
class Explainer {
 public:
  using InputFrames = std::map<std::int32_t, std::int64_t>;

  /// `threshold` is the coherence that groups must stay below. The log outlives the explainer. The
  /// diagnostics count frames from 1; `inputFrames` tells the input's own numbers of them, which
  /// the text then names instead.
  Explainer(const DecisionLog& log, double threshold, InputFrames inputFrames = {})
      : m_log(log), m_threshold(threshold), m_inputFrames(std::move(inputFrames)) {}

  /// The life of a group, a line per decision; only what is about `frame`, when it is given, with
  /// the members there. Empty for a group that the log does not know.
  std::string explainGroup(int group, std::optional<std::int32_t> frame = std::nullopt) const;
  /// The decisions whose coherence is closest to the threshold, the closest first.
  std::string listUncertain(std::size_t count) const;
  /// `explainGroup()` of every group.
  std::map<std::uint32_t, std::string> explainAll() const;

 private:
  std::string lineOf(const Decision& decision) const;
  /// The line for the group that went up in another.
  std::string absorbedLineOf(const Decision& decision) const;
  std::string timeOf(const Decision& decision) const;
  std::string comparison(const Decision& decision) const;

  const DecisionLog& m_log;
  double m_threshold;
  InputFrames m_inputFrames;
};

/// The coherence threshold out of a tracker's parameter file. A file that cannot be read or does
/// not hold it is an `InputError`.
double readCoherenceThreshold(const std::string& parameterFile);

}  // namespace grouptracker
