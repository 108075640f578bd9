#include "host/commands/check/CheckReport.h"

#include <fmt/format.h>

namespace grouptracker {

void CheckReport::problem(const std::string& text) {
  m_print(text);
  if (++m_problems == mostProblems) {
    throw TooManyProblems();
  }
}

void CheckReport::warn(const std::string& kind, const std::string& place, const std::string& text) {
  Warning& warning = m_warnings[kind];
  if (++warning.count == 1) {
    warning.text = place + ": warning: " + text;
  }
}

void CheckReport::printWarnings() const {
  for (const auto& [kind, warning] : m_warnings) {
    m_print(warning.count == 1 ? warning.text
                               : fmt::format("{}; {} such in all", warning.text, warning.count));
  }
}

}  // namespace grouptracker
