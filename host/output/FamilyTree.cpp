#include "host/output/FamilyTree.h"

#include "host/base/JoinedSets.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <tuple>
#include <utility>

namespace grouptracker {

namespace {

/// A group as the drawing has it.
struct Bar {
  std::uint32_t group = 0;
  std::int64_t first = 0;
  std::int64_t end = 0;  ///< first frame that is free again
};

using Bars = std::vector<Bar>;

/// Which frames of which lanes are taken.
class LaneTable {
 public:
  bool isFree(int lane, const Bar& bar) const {
    const auto taken = m_taken.find(lane);
    return taken == m_taken.end() ||
           std::none_of(taken->second.begin(), taken->second.end(), [&](const Bar& other) {
             return other.first < bar.end && bar.first < other.end;
           });
  }
  void take(int lane, const Bar& bar) { m_taken[lane].push_back(bar); }
  /// The free lane that is closest to the wanted one.
  int closest(int wanted, const Bar& bar) const {
    for (int away = 0;; ++away) {
      for (const int lane : {wanted + away, wanted - away}) {
        if (isFree(lane, bar)) {
          return lane;
        }
      }
    }
  }

 private:
  std::map<int, Bars> m_taken;
};

/// A family with the lanes of its members, from 0.
struct Family {
  Bars members;  ///< in order of their first frames
  std::map<std::uint32_t, int> lanes;
};

/// Each member comes next to the first relative that has its lane already.
void placeMembers(Family& family, const std::vector<FamilyTree::Tie>& ties) {
  LaneTable table;
  int lowest = 0;
  for (const Bar& bar : family.members) {
    std::optional<int> wanted;
    for (const FamilyTree::Tie& tie : ties) {
      const bool isOne = tie.from == bar.group || tie.to == bar.group;
      const auto relative = family.lanes.find(tie.from == bar.group ? tie.to : tie.from);
      if (isOne && relative != family.lanes.end()) {
        wanted = relative->second;
        break;
      }
    }
    const int lane = table.closest(wanted.value_or(0), bar);
    table.take(lane, bar);
    family.lanes[bar.group] = lane;
    lowest = std::min(lowest, lane);
  }
  for (auto& [group, lane] : family.lanes) {
    lane -= lowest;
  }
}

/// The topmost place at which all of a family finds room.
int placeFor(const Family& family, const LaneTable& table) {
  const auto fits = [&](int top) {
    return std::all_of(family.members.begin(), family.members.end(), [&](const Bar& bar) {
      return table.isFree(top + family.lanes.at(bar.group), bar);
    });
  };
  int top = 0;
  while (!fits(top)) {
    ++top;
  }
  return top;
}

/// The ties among the members of each family, by the family's root.
std::vector<Family> familiesOf(const Bars& bars, const std::vector<FamilyTree::Tie>& ties) {
  std::map<std::uint32_t, std::size_t> indices;
  for (const Bar& bar : bars) {
    indices.emplace(bar.group, indices.size());
  }
  JoinedSets sets(bars.size());
  for (const FamilyTree::Tie& tie : ties) {
    sets.join(indices.at(tie.from), indices.at(tie.to));
  }
  std::map<std::size_t, Family> byRoot;
  for (const Bar& bar : bars) {
    byRoot[sets.rootOf(indices.at(bar.group))].members.push_back(bar);
  }
  std::map<std::size_t, std::vector<FamilyTree::Tie>> tiesByRoot;
  for (const FamilyTree::Tie& tie : ties) {
    tiesByRoot[sets.rootOf(indices.at(tie.from))].push_back(tie);
  }
  std::vector<Family> families;
  for (auto& [root, family] : byRoot) {
    placeMembers(family, tiesByRoot[root]);
    families.push_back(std::move(family));
  }
  std::sort(families.begin(), families.end(), [](const Family& a, const Family& b) {
    const auto key = [](const Family& family) {
      const Bar& oldest = family.members.front();
      return std::tuple(family.members.size() < 2, oldest.first, oldest.group);
    };
    return key(a) < key(b);
  });
  return families;
}

}  // namespace

void FamilyTree::add(const RunStep& step) {
  const std::int64_t frame = step.inputFrame.value_or(step.reportedFrame);
  for (const RunGroup& group : step.groups) {
    Life& life = m_lives.try_emplace(group.id, Life{frame, frame, {}}).first->second;
    for (const RunMember& member : group.members) {
      if (group.isVisible && member.person) {
        life.persons.insert(*member.person);
      }
    }
    life.last = group.isVisible ? frame : life.last;
  }
  for (const TrackedEvent& event : step.events) {
    if (event.kind == EventKind::merged || event.kind == EventKind::split) {
      m_lives.try_emplace(*event.other, Life{frame, frame, {}});  // one that was never listed
      m_ties.push_back({*event.other, event.group, event.kind, frame});
    }
  }
}

std::map<std::uint32_t, int> FamilyTree::lanes(std::int64_t gap, const Length& leastLength) const {
  Bars bars;
  for (const auto& [group, life] : m_lives) {
    const std::int64_t length = std::max(life.last - life.first + 1, leastLength(group));
    bars.push_back({group, life.first, life.first + length + gap});
  }
  std::sort(bars.begin(), bars.end(), [](const Bar& a, const Bar& b) {
    return std::tie(a.first, a.group) < std::tie(b.first, b.group);
  });
  LaneTable table;
  std::map<std::uint32_t, int> lanes;
  for (const Family& family : familiesOf(bars, m_ties)) {
    const int top = placeFor(family, table);
    for (const Bar& bar : family.members) {
      lanes[bar.group] = top + family.lanes.at(bar.group);
      table.take(lanes[bar.group], bar);
    }
  }
  return lanes;
}

}  // namespace grouptracker
