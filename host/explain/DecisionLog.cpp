#include "host/explain/DecisionLog.h"

#include "host/base/LineReader.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <utility>

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

/// The line from the first occurrence of a text on; null without it. The tracker leaves some lines
/// open, so what it says next may stand in the middle of a line.
const char* from(const std::string& line, const char* text) {
  const auto at = line.find(text);
  return at == std::string::npos ? nullptr : line.c_str() + at;
}

bool hasTie(const GroupLine::Ties& ties, const std::pair<int, int>& tie) {
  return std::find(ties.begin(), ties.end(), tie) != ties.end();
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

DecisionLog DecisionLog::read(std::istream& in, const std::string& name, MobileDump* dump) {
  DecisionLog log;
  log.m_dump = dump;
  LineReader lines(in, name);
  while (lines.next()) {
    log.take(lines.line());
  }
  if (log.m_frame == 0) {
    throw InputError(name, "holds no frame of a run's diagnostics");
  }
  return log;
}

RunSteps DecisionLog::steps() const {
  RunSteps steps;
  for (const Decision& decision : m_decisions) {
    if (steps.empty() || steps.back().frame != decision.frame) {
      steps.emplace_back().frame = decision.frame;
    }
    steps.back().decisions.push_back(decision);
  }
  return steps;
}

void DecisionLog::take(const std::string& line) {
  if (line.starts_with("********** Frame ")) {
    std::sscanf(line.c_str(), "********** Frame %" SCNu32, &m_frame);
    m_dumped = m_dump != nullptr ? &m_dump->at(m_frame) : nullptr;
    m_person = none;
  } else if (line.starts_with("   id: ") || line.starts_with("TPO id: ")) {
    takeInput(line);
  } else if (line.starts_with("mobiles at processed frame ")) {
    std::sscanf(line.c_str(), "mobiles at processed frame %d", &m_processedFrame);
    m_processed.clear();
  } else if (line.ends_with("), ")) {
    takeProcessedMobiles(line);
  } else if (line.ends_with("------------ Groups:")) {
    m_now.clear();
  } else if (line == "--------------------") {
    m_before = std::move(m_now);
    m_now.clear();
  } else if (const auto group = GroupLine::parse(line)) {
    takeGroup(*group);
  } else if (line.starts_with("parameter file name: ")) {
    m_parameterFile = line.substr(std::string("parameter file name: ").size());
  } else {
    takeCoherence(line);
    takeCreation(line);
  }
}

// The mobiles of a person are listed from the oldest to the current one.
void DecisionLog::takeInput(const std::string& line) {
  std::int64_t id = 0;
  if (std::sscanf(line.c_str(), "TPO id: %" SCNd64, &id) == 1) {
    m_person = knownId(id);
  } else if (std::sscanf(line.c_str(), "   id: %" SCNd64, &id) == 1) {
    m_personOf.try_emplace(knownId(id), m_person);
  }
}

void DecisionLog::takeProcessedMobiles(const std::string& line) {
  const char* at = line.c_str();
  for (;;) {
    std::int64_t id = 0;
    int length = 0;  // stays 0 where the text behind an id is another than expected
    if (std::sscanf(at, "%" SCNd64 " (%*[^)]), %n", &id, &length) != 1 || length == 0) {
      return;
    }
    m_processed.insert(knownId(id));
    at += length;
  }
}

void DecisionLog::takeCoherence(const std::string& line) {
  int group = 0;
  std::int64_t a = 0;
  std::int64_t b = 0;
  double coherence = 0.0;
  CoherenceParts parts;
  const auto addWith = [&](DecisionKind kind, std::optional<int> about,
                           std::vector<std::int64_t> mobiles) {
    std::transform(mobiles.begin(), mobiles.end(), mobiles.begin(), knownId);
    add(kind, about, std::move(mobiles)).coherence = coherence;
  };
  if (const char* text = from(line, "not adding mobile ");
      text && std::sscanf(text,
                          "not adding mobile %" SCNd64 " to group %d because of an ancestor "
                          "because of coherence %lf",
                          &a, &group, &coherence) == 3) {
    addWith(DecisionKind::notAddedByAncestry, group, {a});
  } else if (text = from(line, "added mobile ");
             text && std::sscanf(text,
                                 "added mobile %" SCNd64 " to group %d because of an "
                                 "ancestor with coherence %lf",
                                 &a, &group, &coherence) == 3) {
    addWith(DecisionKind::addedByAncestry, group, {a});
  }
  if (const char* text = from(line, "final coherence for creating group from group mobile ");
      text &&
      std::sscanf(text,
                  "final coherence for creating group from group mobile %" SCNd64 " (n=%*d) = %lf",
                  &a, &coherence) == 2) {
    addWith(DecisionKind::notFounded, std::nullopt, {a});
  }
  // Last, because the line of a refusal has no end and the founding of a pair may continue it.
  if (const char* text = from(line, "created group ");
      text &&
      std::sscanf(text,
                  "created group %d from pair %" SCNd64 " and %" SCNd64 " with group coherence %lf",
                  &group, &a, &b, &coherence) == 4) {
    addWith(DecisionKind::founded, group, {a, b});
  } else if (std::sscanf(line.c_str(), "properties: %lf, %lf, %lf", &parts.distance, &parts.speed,
                         &parts.direction) == 3 &&
             !m_decisions.empty()) {
    m_decisions.back().parts = parts;
  }
}

void DecisionLog::takeCreation(const std::string& line) {
  int group = 0;
  std::int64_t mobile = 0;
  int length = 0;
  if (std::sscanf(line.c_str(), "created new group with mobile %" SCNd64 " and id=%d", &mobile,
                  &group) == 2) {
    if (!m_decisions.empty() && m_decisions.back().kind == DecisionKind::notFounded &&
        m_decisions.back().mobiles == std::vector{knownId(mobile)}) {
      m_decisions.back().kind = DecisionKind::foundedByAncestry;  // it was founded after all
      m_decisions.back().group = group;
    }
  } else if (std::sscanf(line.c_str(), "group %d being created with mobiles %n", &group, &length) ==
                 1 &&
             length > 0) {
    std::vector<std::int64_t> mobiles;
    int step = 0;
    for (const char* at = line.c_str() + length;
         std::sscanf(at, "%" SCNd64 " %n", &mobile, &step) == 1; at += step) {
      mobiles.push_back(knownId(mobile));
    }
    add(DecisionKind::foundedByCluster, group, std::move(mobiles));
  } else if (const char* text = from(line, "remove group ");
             text && std::sscanf(text, "remove group %d", &group) == 1) {
    add(DecisionKind::removed, group, {});
  }
}

void DecisionLog::takeGroup(const GroupLine& line) {
  Listed now{line, {}, {}};
  for (const std::int64_t mobile : line.mobiles) {
    if (m_processed.contains(mobile)) {
      now.members.insert(mobile);
      for (const std::int64_t person : personsOf({mobile})) {
        now.persons.insert(person);
      }
    }
  }
  m_membersAt[line.id][m_processedFrame] = now.persons;
  const auto found = m_before.find(line.id);
  const Listed* const before = found == m_before.end() ? nullptr : &found->second;
  for (const auto& tie : line.merges) {
    if (before == nullptr || !hasTie(before->line.merges, tie)) {
      Decision& merge = add(DecisionKind::merged, line.id, {});
      merge.other = tie.first;
      merge.reason = sharedSon(now, tie.first);
    }
  }
  for (const auto& tie : line.splits) {
    if (before == nullptr || !hasTie(before->line.splits, tie)) {
      Decision& split = add(DecisionKind::split, line.id, {});
      split.other = tie.first;
      split.reason = ancestorOf(now, tie.first);
    }
  }
  findJoins(now, before);
  if (line.endFrame != none && before != nullptr && before->line.endFrame == none) {
    add(DecisionKind::ended, line.id, {}).processedFrame = line.endFrame;
  }
  m_now.insert_or_assign(line.id, std::move(now));
}

void DecisionLog::findJoins(const Listed& now, const Listed* before) {
  const Ids own = before != nullptr ? before->persons : Ids();
  for (const std::int64_t mobile : now.members) {
    const auto persons = personsOf({mobile});
    const bool isFounder =
        std::any_of(m_decisions.rbegin(), m_decisions.rend(), [&](const Decision& decision) {
          return decision.frame == m_frame && decision.group == now.line.id &&
                 std::find(decision.mobiles.begin(), decision.mobiles.end(), mobile) !=
                     decision.mobiles.end();
        });
    if (!isFounder && !persons.empty() && !own.contains(persons.front())) {
      add(DecisionKind::joined, now.line.id, {mobile}).reason = linkOf(mobile, now.line.id);
    }
  }
  for (const std::int64_t person : own) {
    if (!now.persons.contains(person)) {
      add(DecisionKind::left, now.line.id, {}).persons = {person};
    }
  }
}

Decision& DecisionLog::add(DecisionKind kind, std::optional<int> group,
                           std::vector<std::int64_t> mobiles) {
  Decision decision;
  decision.kind = kind;
  decision.frame = m_frame;
  decision.processedFrame = m_processedFrame;
  decision.group = group;
  decision.persons = personsOf(mobiles);
  decision.mobiles = std::move(mobiles);
  return m_decisions.emplace_back(std::move(decision));
}

std::vector<std::int64_t> DecisionLog::personsOf(const std::vector<std::int64_t>& mobiles) const {
  std::vector<std::int64_t> persons;
  for (const std::int64_t mobile : mobiles) {
    if (const auto person = m_personOf.find(mobile); person != m_personOf.end()) {
      persons.push_back(person->second);
    }
  }
  return persons;
}

std::set<std::int64_t> DecisionLog::membersAt(int group, std::int32_t processedFrame) const {
  const auto frames = m_membersAt.find(group);
  if (frames == m_membersAt.end()) {
    return {};
  }
  const auto members = frames->second.find(processedFrame);
  return members == frames->second.end() ? Ids() : members->second;
}

}  // namespace grouptracker
