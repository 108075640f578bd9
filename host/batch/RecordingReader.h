#pragma once

#include "host/batch/ManifestReader.h"
#include "host/batch/RecordingRules.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace grouptracker {

/// Walks through the recordings of a manifest in which nothing is wrong, one at a time.
class RecordingReader {
 public:
  RecordingReader(const std::string& manifest, const RecordingRules& rules)
      : m_manifest(ManifestReader::open(manifest, throwProblem)), m_rules(rules) {}

  /// The next recording; none at the end. The manifest may have changed since it was checked: what
  /// is wrong now is an `InputError`.
  std::optional<Recording> next() {
    if (!m_manifest->next(m_entry)) {
      return std::nullopt;
    }
    ++m_count;
    return m_rules.recordingOf(m_entry);
  }
  /// Where the last one stands in the manifest, from 0.
  std::size_t index() const { return m_count - 1; }

 private:
  std::unique_ptr<ManifestReader> m_manifest;
  const RecordingRules& m_rules;
  ManifestEntry m_entry;
  std::size_t m_count = 0;
};

}  // namespace grouptracker
