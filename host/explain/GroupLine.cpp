#include "host/explain/GroupLine.h"

#include <cstdio>
#include <cstdlib>

namespace grouptracker {

namespace {

/// Reads " 9 at frame 41, 12 at frame 43" after a word of the line; empty when it is not there.
GroupLine::Ties readTies(const std::string& line, const std::string& word) {
  GroupLine::Ties ties;
  auto at = line.find(word);
  if (at == std::string::npos) {
    return ties;
  }
  at += word.size();
  int other = 0;
  int frame = 0;
  int length = 0;
  while (std::sscanf(line.c_str() + at, " %d at frame %d%n", &other, &frame, &length) == 2) {
    ties.emplace_back(other, frame);
    at += static_cast<std::size_t>(length);
    if (at >= line.size() || line[at] != ',') {
      break;
    }
    ++at;
  }
  return ties;
}

}  // namespace

std::optional<GroupLine> GroupLine::parse(const std::string& line) {
  GroupLine group;
  int length = 0;
  if (std::sscanf(line.c_str(), "- %d, mobiles:%n", &group.id, &length) != 1 || length == 0) {
    return std::nullopt;
  }
  const char* at = line.c_str() + length;
  for (char* end = nullptr;; at = end) {
    const long long mobile = std::strtoll(at, &end, 10);
    if (end == at) {
      break;
    }
    group.mobiles.push_back(knownId(mobile));
  }
  const auto endFrame = line.find("endFrame=");
  if (endFrame == std::string::npos ||
      std::sscanf(line.c_str() + endFrame, "endFrame=%d", &group.endFrame) != 1) {
    return std::nullopt;
  }
  group.merges = readTies(line, ", merged with");
  group.splits = readTies(line, ", splitted from");
  return group;
}

}  // namespace grouptracker
