#include "host/commands/check/CheckReport.h"

#include <fmt/format.h>

namespace grouptracker {

namespace {

constexpr std::uint64_t mostOfOneKind = 3;  // that are printed

}  // namespace

void CheckReport::problem(const InputError& error) {
  Problem& kind = m_problems[error.place().file + ": " + error.problem()];
  if (kind.count > 0 && error.place().line <= kind.lastLine) {
    return;
  }
  kind.lastLine = error.place().line;
  if (++kind.count <= mostOfOneKind) {
    m_print(error.what());
  }
  if (kind.count == 1 && m_problems.size() == mostProblems) {
    throw TooManyProblems();
  }
}

void CheckReport::warn(const std::string& kind, const InputPlace& place, const std::string& text) {
  Warning& warning = m_warnings[kind];
  if (++warning.count == 1) {
    warning.text = place.text() + ": warning: " + text;
  }
}

void CheckReport::printRest() const {
  for (const auto& [kind, problem] : m_problems) {
    if (problem.count > mostOfOneKind) {
      m_print(fmt::format("{}; {} such in all", kind, problem.count));
    }
  }
  for (const auto& [kind, warning] : m_warnings) {
    m_print(warning.count == 1 ? warning.text
                               : fmt::format("{}; {} such in all", warning.text, warning.count));
  }
}

}  // namespace grouptracker
