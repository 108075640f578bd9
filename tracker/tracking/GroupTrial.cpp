#include "tracker/tracking/GroupTrial.h"

#include <algorithm>

namespace {

constexpr std::size_t usualWalk = 24;  // mobiles added on the way through a usual window
constexpr int usualMembers = 128;      // of a group that is one person at a time

}  // namespace

GroupTrial::GroupTrial(const GroupMembers& members, const Cohesion& cohesion)
    : m_group(members), m_cohesion(cohesion) {
  m_added.reserve(usualWalk);
  m_touched.reserve(usualWalk / 2);
}

GroupTrial::Known GroupTrial::isKnown(const MetaLPO& mobile) const {
  for (const MetaLPO* added : m_added) {
    if (added->getIdent() == mobile.getIdent()) {
      return added == &mobile ? Known::yes : Known::asAnotherNode;
    }
  }
  const auto& byId = m_group.byId();
  if (byId.empty() || mobile.getIdent() > byId.rbegin()->first) {
    return Known::no;  // the usual case: ids grow with time
  }
  const MetaLPO* member = m_group.find(mobile.getIdent());
  if (member == nullptr) {
    return Known::no;
  }
  return member == &mobile ? Known::yes : Known::asAnotherNode;
}

bool GroupTrial::add(MetaLPO* mobile) {
  const Known known = isKnown(*mobile);
  if (known == Known::asAnotherNode) {
    return false;
  }
  if (known == Known::no) {
    touch(mobile->getFrame()).insert(mobile);
    m_added.push_back(mobile);
  }
  const FrameMembers& changed = *at(mobile->getFrame());
  const MetaLPO* lower = changed.hasSeveral() ? nullptr : nextLower(mobile->getIdent());
  m_cohesion.updateDistance(static_cast<int>(m_group.frames().size()) + m_newFrames, changed,
                            lower);
  return true;
}

FrameMembers& GroupTrial::touch(unsigned int frame) {
  const auto place = std::find_if(m_touched.begin(), m_touched.end(),
                                  [&](const auto& entry) { return entry.frame() >= frame; });
  if (place != m_touched.end() && place->frame() == frame) {
    return *place;
  }
  if (const FrameMembers* members = m_group.at(frame)) {
    return *m_touched.insert(place, *members);
  }
  ++m_newFrames;
  return *m_touched.emplace(place, frame);
}

const FrameMembers* GroupTrial::at(unsigned int frame) const {
  for (const auto& touched : m_touched) {
    if (touched.frame() == frame) {
      return &touched;
    }
  }
  return m_group.at(frame);
}

unsigned int GroupTrial::frameBefore(unsigned int frame) const {
  const std::size_t place = m_group.firstFrom(frame);
  unsigned int before = place > 0 ? m_group.frames()[place - 1].frame() : 0;
  for (const auto& touched : m_touched) {
    if (touched.frame() < frame) {
      before = std::max(before, touched.frame());
    }
  }
  return before > 0 ? before : frame;
}

const MetaLPO* GroupTrial::nextLower(int id) const {
  const MetaLPO* lower = m_group.nextLower(id);
  for (const MetaLPO* added : m_added) {
    const int addedId = added->getIdent();
    if (addedId >= 0 && addedId < id && (lower == nullptr || addedId > lower->getIdent())) {
      lower = added;
    }
  }
  return lower;
}

bool GroupTrial::hasSeveralAtOnce() const {
  return m_group.hasSeveralAtOnce() ||
         std::any_of(m_touched.begin(), m_touched.end(),
                     [](const auto& touched) { return touched.hasSeveral(); });
}

Spreads GroupTrial::meanSpreads() const {
  if (!hasSeveralAtOnce()) {
    return spreadsOfAll();
  }
  // The frames before the first touched one are already summed; the rest follows in ascending
  // order, the touched frames in place of the group's own.
  const auto& frames = m_group.frames();
  std::size_t place = m_touched.empty() ? frames.size() : m_group.firstFrom(m_touched[0].frame());
  Spreads sum = m_group.spreadSum(place);
  const auto add = [&](const Spreads& spreads) {
    sum.speed += spreads.speed;
    sum.direction += spreads.direction;
  };
  for (const auto& touched : m_touched) {
    for (; place < frames.size() && frames[place].frame() < touched.frame(); ++place) {
      add(m_group.spreadsAt(place));
    }
    if (place < frames.size() && frames[place].frame() == touched.frame()) {
      ++place;
    }
    add(touched.spreads());
  }
  for (; place < frames.size(); ++place) {
    add(m_group.spreadsAt(place));
  }
  const auto count = static_cast<double>(frames.size() + static_cast<std::size_t>(m_newFrames));
  return {sum.speed / count, sum.direction / count};
}

Spreads GroupTrial::spreadsOfAll() const {
  QVarLengthArray<MetaLPO*, usualMembers> all;
  for (const auto& frame : m_group.frames()) {
    for (MetaLPO* member : frame.members()) {
      all.push_back(member);
    }
  }
  for (MetaLPO* added : m_added) {
    all.push_back(added);
  }
  const auto comesBefore = [](const MetaLPO* a, const MetaLPO* b) {
    return a->getIdent() < b->getIdent();
  };
  if (!std::is_sorted(all.begin(), all.end(), comesBefore)) {
    std::sort(all.begin(), all.end(), comesBefore);
  }
  return all.empty() ? Spreads()
                     : spreadsOf({all.constData(), static_cast<std::size_t>(all.size())});
}
