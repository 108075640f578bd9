#include "tracker/tracking/GroupTrial.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr std::size_t usualWalk = 24;  // mobiles added on the way through a usual window
constexpr int usualMembers = 128;      // of a group that is one person at a time

}  // namespace

GroupTrial::GroupTrial(const GroupMembers& members, const Cohesion& cohesion)
    : m_group(members),
      m_cohesion(cohesion),
      m_latest(members.byId().empty() ? nullptr : members.byId().rbegin()->second.data()),
      m_hasSeveralAtOnce(members.hasSeveralAtOnce()) {
  m_added.reserve(usualWalk);
  m_touched.reserve(usualWalk / 2);
  m_sums.reserve(usualWalk / 2);
}

GroupTrial::Known GroupTrial::isKnown(const MetaLPO& mobile) const {
  for (const MetaLPO* added : m_added) {
    if (added->getIdent() == mobile.getIdent()) {
      return added == &mobile ? Known::yes : Known::asAnotherNode;
    }
  }
  const MetaLPO* member = m_group.find(mobile.getIdent());
  if (member == nullptr) {
    return Known::no;
  }
  return member == &mobile ? Known::yes : Known::asAnotherNode;
}

bool GroupTrial::add(MetaLPO* mobile) {
  const MetaLPO* const latest = m_latest;
  // The usual case, as ids grow with time.
  const bool isLatest = latest == nullptr || mobile->getIdent() > latest->getIdent();
  const Known known = isLatest ? Known::no : isKnown(*mobile);
  if (known == Known::asAnotherNode) {
    return false;
  }
  if (isLatest) {
    m_latest = mobile;
  }
  const FrameMembers& changed =
      known == Known::no ? insert(mobile, isLatest) : *at(mobile->getFrame());
  const MetaLPO* lower = nullptr;
  if (!changed.hasSeveral()) {
    lower = isLatest && (latest == nullptr || latest->getIdent() >= 0)
                ? latest
                : nextLower(mobile->getIdent());
  }
  m_cohesion.updateDistance(static_cast<int>(m_group.frames().size()) + m_newFrames, changed,
                            lower);
  return true;
}

const FrameMembers& GroupTrial::insert(MetaLPO* mobile, bool isLatest) {
  FrameMembers& members = touch(mobile->getFrame());
  members.insert(mobile);
  m_hasSeveralAtOnce = m_hasSeveralAtOnce || members.hasSeveral();
  m_added.push_back(mobile);
  if (!isLatest) {
    m_sample.reset();
  }
  return members;
}

/// The members at a frame, about to be changed.
FrameMembers& GroupTrial::touch(unsigned int frame) {
  auto place = m_touched.end();
  while (place != m_touched.begin() && std::prev(place)->frame() >= frame) {
    --place;
  }
  const auto before = static_cast<std::size_t>(place - m_touched.begin());
  if (place != m_touched.end() && place->frame() == frame) {
    m_sums.resize(std::min(m_sums.size(), before + 1));
    return *place;
  }
  m_sums.resize(std::min(m_sums.size(), before));
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

// The frames count in ascending order, the touched ones in place of the group's own. A walk mostly
// goes on behind what it touched before, so that the sums up to there hold.
Spreads GroupTrial::meanSpreads() {
  if (!m_hasSeveralAtOnce) {
    return spreadsOfAll();
  }
  if (m_touched.empty()) {
    return m_group.meanSpreads();
  }
  sumUpToTheLastTouched();
  PartialSum all = m_sums.back();
  passTouched(m_touched.back(), all);
  const auto& frames = m_group.frames();
  for (; all.place < frames.size(); ++all.place) {
    all.add(m_group.spreadsAt(all.place));
  }
  const auto count = static_cast<double>(frames.size() + static_cast<std::size_t>(m_newFrames));
  return {all.sum.speed / count, all.sum.direction / count};
}

void GroupTrial::sumUpToTheLastTouched() {
  while (m_sums.size() < m_touched.size()) {
    const FrameMembers& next = m_touched[m_sums.size()];
    PartialSum partial;
    if (m_sums.empty()) {
      partial.place = m_group.firstFrom(next.frame());
      partial.sum = m_group.spreadSum(partial.place);
    } else {
      partial = m_sums.back();
      passTouched(m_touched[m_sums.size() - 1], partial);
      passUntil(next.frame(), partial);
    }
    m_sums.push_back(partial);
  }
}

void GroupTrial::passTouched(const FrameMembers& touched, PartialSum& partial) const {
  const auto& frames = m_group.frames();
  const bool isOneOfTheGroup =
      partial.place < frames.size() && frames[partial.place].frame() == touched.frame();
  partial.place += isOneOfTheGroup ? 1 : 0;
  partial.add(touched.spreads());
}

/// Adds the group's own frames before the given one.
void GroupTrial::passUntil(unsigned int frame, PartialSum& partial) const {
  const auto& frames = m_group.frames();
  for (; partial.place < frames.size() && frames[partial.place].frame() < frame; ++partial.place) {
    partial.add(m_group.spreadsAt(partial.place));
  }
}

/// Of all members together, who are a sample that grows with the walk.
Spreads GroupTrial::spreadsOfAll() {
  if (!m_sample) {
    sampleAll();
  }
  for (; m_sampled < m_added.size(); ++m_sampled) {
    m_sample->add(*m_added[m_sampled]);
  }
  return m_sample->isEmpty() ? Spreads() : m_sample->spreads();
}

void GroupTrial::sampleAll() {
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
  m_sample.emplace();
  for (MetaLPO* mobile : all) {
    m_sample->add(*mobile);
  }
  m_sampled = m_added.size();
}
