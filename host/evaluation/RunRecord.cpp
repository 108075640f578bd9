#include "host/evaluation/RunRecord.h"

namespace grouptracker {

Grouping FoundStep::grouping() const {
  std::vector<PersonGroup> lists;
  lists.reserve(groups.size());
  for (const FoundGroup& group : groups) {
    lists.push_back(group.persons);
  }
  return joinOverlapping(lists);
}

}  // namespace grouptracker
