#include "host/evaluation/search/TrialTasks.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/TextNumbers.h"
#include "host/output/WholeFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <system_error>

namespace grouptracker {

namespace {

const char* const chunkWord = "chunk ";
const char* const trialDied = "died";

/// A word and the rest of a line.
std::string takeWord(std::string& line) {
  const auto end = std::min(line.find(' '), line.size());
  const std::string word = line.substr(0, end);
  line.erase(0, std::min(end + 1, line.size()));
  return word;
}

std::size_t countIn(const std::string& text) {
  constexpr auto largest = static_cast<double>(std::numeric_limits<std::int32_t>::max());
  return static_cast<std::size_t>(wholeNumber(parseNumber(text), largest, "count"));
}

TrialTask taskIn(std::string line) {
  TrialTask task;
  task.sequence = countIn(takeWord(line));
  task.score = takeWord(line);
  if (!line.empty()) {
    parseNumbers(line, task.candidate);
  }
  return task;
}

/// What `read` makes of the lines; what it cannot is the line's error.
template <typename Read>
void readLines(const std::string& path, const Read& read) {
  InputFile file(path);
  LineReader lines(file.stream(), path);
  while (lines.nextFilled()) {
    try {
      read(lines.line());
    } catch (const ValueProblem& problem) {
      throw lines.error(problem.what());
    }
  }
}

}  // namespace

TrialTaskFiles TrialTaskFiles::open(const std::string& path) {
  InputFile file(path);
  LineReader lines(file.stream(), path);
  try {
    const bool isThere = lines.nextFilled() && lines.line().starts_with(chunkWord);
    const std::size_t chunk =
        isThere ? countIn(lines.line().substr(std::string(chunkWord).size())) : 0;
    if (chunk > 0) {
      return {path, chunk};
    }
  } catch (const ValueProblem&) {  // no count
  }
  throw InputError(path, 1, "tasks of a search are expected");
}

std::string TrialTaskFiles::partFile(std::size_t part) const {
  return fmt::format("{}.{}", m_path, part);
}

void TrialTaskFiles::writeTasks(const TrialTasks& tasks) const {
  std::string text = fmt::format("{}{}\n", chunkWord, m_chunk);
  for (const TrialTask& task : tasks) {
    text += fmt::format("{} {}", task.sequence, task.score);
    for (const double value : task.candidate) {
      text += fmt::format(" {}", value);
    }
    text += "\n";
  }
  WholeFile(m_path).write(text);
}

TrialTasks TrialTaskFiles::readTasks(std::size_t part) const {
  TrialTasks tasks;
  std::size_t line = 0;
  readLines(m_path, [&](const std::string& text) {
    const std::size_t task = line++ - 1;  // of the first line that of none
    if (line > 1 && task / m_chunk == part) {
      tasks.push_back(taskIn(text));
    }
  });
  return tasks;
}

void TrialTaskFiles::writeResults(std::size_t part,
                                  const std::vector<std::optional<double>>& results) const {
  std::string text;
  for (const auto& result : results) {
    text += (result ? fmt::format("{}", *result) : trialDied) + std::string("\n");
  }
  WholeFile(partFile(part)).write(text);
}

/// A file that is put in place is empty until then.
bool TrialTaskFiles::hasPart(std::size_t part) const {
  std::error_code problem;
  const auto size = std::filesystem::file_size(partFile(part), problem);
  return !problem && size > 0;
}

bool TrialTaskFiles::isComplete(std::size_t tasks) const {
  // To list a folder makes a network's file system look anew, which may otherwise remember for a
  // minute that a file was not there.
  namespace fs = std::filesystem;
  const fs::directory_iterator all(fs::path(m_path).parent_path());
  std::for_each(begin(all), end(all), [](const fs::directory_entry&) {});
  for (std::size_t part = 0; part * m_chunk < tasks; ++part) {
    if (!hasPart(part)) {
      return false;
    }
  }
  return true;
}

std::vector<std::size_t> TrialTaskFiles::readResults(
    std::size_t tasks, const std::function<void(std::size_t, std::optional<double>)>& take) const {
  std::vector<std::size_t> missing;
  for (std::size_t first = 0; first < tasks; first += m_chunk) {
    const std::size_t end = std::min(tasks, first + m_chunk);
    if (hasPart(first / m_chunk)) {
      readPart(first, end, take);
      continue;
    }
    for (std::size_t task = first; task < end; ++task) {
      missing.push_back(task);
    }
  }
  return missing;
}

/// The scores of the tasks from one on to one behind the last.
void TrialTaskFiles::readPart(
    std::size_t first, std::size_t end,
    const std::function<void(std::size_t, std::optional<double>)>& take) const {
  const std::string path = partFile(first / m_chunk);
  std::size_t task = first;
  readLines(path, [&](const std::string& text) {
    const auto score = text == trialDied ? std::nullopt : std::optional(parseNumber(text));
    if (task < end) {
      take(task, score);
    }
    ++task;
  });
  if (task != end) {
    throw InputError(path,
                     fmt::format("{} scores are expected, not {}", end - first, task - first));
  }
}

}  // namespace grouptracker
