#include "tests/host/grouping/PathScene.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>

namespace grouptracker {

namespace {

std::optional<cv::Point2d> placeAt(const std::vector<Stop>& path, double time) {
  const auto next = std::find_if(path.begin(), path.end(),
                                 [time](const Stop& stop) { return stop.time >= time; });
  if (next == path.end() || time < path.front().time) {
    return std::nullopt;
  }
  const Stop& before = next == path.begin() ? *next : *(next - 1);
  const double span = next->time - before.time;
  const double part = span > 0.0 ? (time - before.time) / span : 0.0;
  return cv::Point2d(before.x + part * (next->x - before.x),
                     before.y + part * (next->y - before.y));
}

std::string describe(const FoundGroup& group) {
  std::string text = fmt::format("{}={{", group.id);
  for (const PersonId member : group.members) {
    text += (member == group.members.front() ? "" : ",") + std::to_string(member);
  }
  text += "}";
  for (const GroupId source : group.from) {
    text += "<" + std::to_string(source);
  }
  return text;
}

bool isAscending(const std::vector<PersonId>& persons) {
  return std::adjacent_find(persons.begin(), persons.end(), std::greater_equal<>()) ==
         persons.end();
}

}  // namespace

PathScene& PathScene::person(PersonId id, const std::vector<Stop>& path) {
  m_walkers[id].path = path;
  return *this;
}

PathScene& PathScene::hide(PersonId id, double from, double until) {
  m_walkers[id].hiddenFrom = from;
  m_walkers[id].hiddenUntil = until;
  return *this;
}

std::vector<PeopleFrame> PathScene::at(double framesPerSecond) const {
  double end = 0.0;
  for (const auto& [id, walker] : m_walkers) {
    end = std::max(end, walker.path.back().time);
  }
  std::vector<PeopleFrame> frames;
  for (int i = 0; i / framesPerSecond <= end; ++i) {
    const double time = i / framesPerSecond;
    frames.push_back({i + 1, time, {}});
    for (const auto& [id, walker] : m_walkers) {
      const auto place = placeAt(walker.path, time);
      if (place && (time < walker.hiddenFrom || time >= walker.hiddenUntil)) {
        frames.back().people.push_back({id, *place});
      }
    }
  }
  return frames;
}

std::vector<FrameGroups> groupsOf(const std::vector<PeopleFrame>& frames, double lookAhead,
                                  const EvidenceModel& model) {
  GroupFinder finder(model, lookAhead);
  std::vector<FrameGroups> lines;
  const auto append = [&lines](const std::vector<FrameGroups>& decided) {
    lines.insert(lines.end(), decided.begin(), decided.end());
  };
  for (const PeopleFrame& frame : frames) {
    append(finder.next(frame));
  }
  append(finder.finish());
  return lines;
}

std::vector<std::string> changesIn(const std::vector<FrameGroups>& lines) {
  std::vector<std::string> changes;
  std::string last;
  for (const FrameGroups& line : lines) {
    std::string groups;
    std::string withOrigin;
    for (FoundGroup group : line.groups) {
      withOrigin += " " + describe(group);
      group.from.clear();
      groups += " " + describe(group);
    }
    if (groups != last) {
      changes.push_back(fmt::format("{:.1f} s:{}", line.time.value_or(-1.0), withOrigin));
      last = groups;
    }
  }
  return changes;
}

std::string faultIn(const std::vector<FrameGroups>& lines, const std::vector<PeopleFrame>& frames) {
  if (lines.size() != frames.size()) {
    return fmt::format("{} lines for {} frames", lines.size(), frames.size());
  }
  std::map<GroupId, std::int64_t> since;
  std::set<GroupId> before;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string place = fmt::format("frame {}: ", frames[i].number);
    std::vector<PersonId> everybody = lines[i].alone;
    std::set<GroupId> now;
    for (const FoundGroup& group : lines[i].groups) {
      everybody.insert(everybody.end(), group.members.begin(), group.members.end());
      if (group.members.size() < 2 || !isAscending(group.members)) {
        return place + "members of " + describe(group);
      }
      if (since.try_emplace(group.id, frames[i].number).first->second != group.since) {
        return place + "since of " + describe(group);
      }
      if (!now.empty() && *now.rbegin() >= group.id) {
        return place + "order of " + describe(group);
      }
      if (!std::includes(before.begin(), before.end(), group.from.begin(), group.from.end())) {
        return place + "origin of " + describe(group);
      }
      now.insert(group.id);
    }
    std::sort(everybody.begin(), everybody.end());
    std::vector<PersonId> inView;
    for (const PersonAt& person : frames[i].people) {
      inView.push_back(person.person);
    }
    if (everybody != inView || !isAscending(lines[i].alone) || lines[i].frame != frames[i].number) {
      return place + "not everybody once";
    }
    before = now;
  }
  return "";
}

}  // namespace grouptracker
