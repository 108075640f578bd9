#include "host/evaluation/search/TrialLog.h"

#include "host/base/InputError.h"
#include "host/base/LineReader.h"

#include <fmt/format.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace grouptracker {

namespace {

const char* const died = "died";

std::string headerOf(const std::vector<std::string>& sequences, const TuningSpace& space) {
  std::string header = "trial";
  for (const std::string& sequence : sequences) {
    header += "," + sequence;
  }
  for (const TunedValue& value : space.values()) {
    header += "," + value.name;
  }
  return header;
}

std::string rowOf(const Trial& trial) {
  std::string row = fmt::format("{}", trial.number);
  for (const auto& score : trial.scores) {
    row += score ? fmt::format(",{}", *score) : fmt::format(",{}", died);
  }
  for (const double value : trial.candidate) {
    row += fmt::format(",{}", value);
  }
  return row;
}

}  // namespace

TrialLog::TrialLog(const std::string& path, const std::vector<std::string>& sequences,
                   const TuningSpace& space, bool resume)
    : m_path(path), m_sequences(sequences.size()) {
  const std::string header = headerOf(sequences, space);
  if (path.empty()) {
    return;
  }
  if (resume) {
    readEarlier(header);
  }
  m_file = std::make_unique<OutputFile>(path);
  m_file->writeLines(header + "\n");
  for (const auto& [number, row] : m_earlier) {
    m_file->writeLines(row + "\n");
  }
}

void TrialLog::readEarlier(const std::string& header) {
  std::ifstream in(m_path);
  LineReader lines(in, m_path);
  if (!in.is_open() || !lines.next()) {
    return;
  }
  if (lines.line() != header) {
    throw lines.error("the trials are of other sequences or values");
  }
  while (lines.nextFilled()) {
    m_earlier[std::strtoul(lines.line().c_str(), nullptr, 10)] = lines.line();
  }
}

bool TrialLog::recall(Trial& trial) const {
  const auto earlier = m_earlier.find(trial.number);
  if (earlier == m_earlier.end()) {
    return false;
  }
  std::istringstream in(earlier->second);
  std::string cell;
  std::getline(in, cell, ',');
  trial.scores.clear();
  for (std::size_t i = 0; i < m_sequences && std::getline(in, cell, ','); ++i) {
    trial.scores.push_back(cell == died ? std::nullopt
                                        : std::optional(std::strtod(cell.c_str(), nullptr)));
  }
  if (rowOf(trial) != earlier->second) {
    throw InputError(m_path, fmt::format("trial {} is of another search", trial.number));
  }
  return true;
}

void TrialLog::write(const Trial& trial) {
  if (m_file) {
    m_file->writeLines(rowOf(trial) + "\n");
  }
}

}  // namespace grouptracker
