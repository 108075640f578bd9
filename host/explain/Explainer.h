#pragma once

#include "DecisionLog.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

/// Tells in plain text why the tracker did what it did.
class Explainer {
 public:
  /// `threshold` is the coherence that groups must stay below. The log outlives the explainer.
  Explainer(const DecisionLog& log, double threshold) : m_log(log), m_threshold(threshold) {}

  /// The life of a group, a line per decision; only what is about `frame`, when it is given, with
  /// the members there. Empty for a group that the log does not know.
  std::string explainGroup(int group, std::optional<std::int32_t> frame = std::nullopt) const;
  /// The decisions whose coherence is closest to the threshold, the closest first.
  std::string listUncertain(std::size_t count) const;
  /// `explainGroup()` of every group.
  std::map<std::uint32_t, std::string> explainAll() const;

 private:
  std::string lineOf(const Decision& decision) const;
  std::string comparison(const Decision& decision) const;

  const DecisionLog& m_log;
  double m_threshold;
};

/// The coherence threshold out of a tracker's parameter file. A file that cannot be read or does
/// not hold it is an `InputError`.
double readCoherenceThreshold(const std::string& parameterFile);
