#include "host/evaluation/search/ParameterText.h"

#include "host/base/InputError.h"
#include "host/run/ParameterFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace grouptracker {

namespace {

constexpr std::size_t pairCount = 47;

}  // namespace

ParameterText ParameterText::read(const std::string& path) {
  if (const auto problem = readParameterFile(path).problem) {
    const auto text = problem->find(": ", path.size());
    throw InputError(problem->substr(0, text), problem->substr(text + 2));
  }
  ParameterText text;
  std::ifstream in(path);
  std::string label;
  std::string value;
  while (text.m_pairs.size() < pairCount && in >> label >> value) {
    text.m_pairs.emplace_back(label, value);
  }
  return text;
}

bool ParameterText::has(const std::string& label) const {
  return std::any_of(m_pairs.begin(), m_pairs.end(),
                     [&label](const auto& pair) { return pair.first == label; });
}

double ParameterText::number(const std::string& label) const {
  for (const auto& [name, value] : m_pairs) {
    if (name == label) {
      return std::strtod(value.c_str(), nullptr);
    }
  }
  return 0.0;
}

std::string ParameterText::with(const std::map<std::string, double>& changes) const {
  std::string text;
  for (const auto& [label, value] : m_pairs) {
    const auto change = changes.find(label);
    text += change == changes.end() ? fmt::format("{:<24} {}\n", label, value)
                                    : fmt::format("{:<24} {}\n", label, change->second);
  }
  return text;
}

}  // namespace grouptracker
