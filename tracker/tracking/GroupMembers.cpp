#include "tracker/tracking/GroupMembers.h"

#include <algorithm>
#include <iterator>

MetaLPO* GroupMembers::find(int id) const {
  const auto member = m_byId.find(id);
  return member == m_byId.end() ? nullptr : member->second.data();
}

MetaLPO* GroupMembers::nextLower(int id) const {
  const auto member = m_byId.lower_bound(id);
  if (member == m_byId.begin() || std::prev(member)->first < 0) {
    return nullptr;
  }
  return std::prev(member)->second.data();
}

void GroupMembers::add(const QSharedPointer<MetaLPO>& mobile) {
  auto& place = m_byId[mobile->getIdent()];
  if (place == mobile) {
    return;
  }
  if (place) {
    unfile(*place);
  }
  place = mobile;
  file(mobile.data());
}

bool GroupMembers::remove(int id) {
  const auto member = m_byId.find(id);
  if (member == m_byId.end()) {
    return false;
  }
  unfile(*member->second);
  m_byId.erase(member);
  return true;
}

void GroupMembers::trim(int firstKeptFrame) {
  std::vector<int> old;
  for (const auto& frame : m_frames) {
    if (static_cast<int>(frame.frame()) < firstKeptFrame) {
      for (const MetaLPO* member : frame.members()) {
        old.push_back(member->getIdent());
      }
    }
  }
  for (const int id : old) {
    remove(id);
  }
}

std::size_t GroupMembers::firstFrom(unsigned int frame) const {
  const auto place =
      std::lower_bound(m_frames.begin(), m_frames.end(), frame,
                       [](const FrameMembers& entry, unsigned int f) { return entry.frame() < f; });
  return static_cast<std::size_t>(place - m_frames.begin());
}

const FrameMembers* GroupMembers::at(unsigned int frame) const {
  if (m_frames.empty() || m_frames.back().frame() < frame) {
    return nullptr;  // as for most steps of a walk into the future
  }
  const std::size_t place = firstFrom(frame);
  return place < m_frames.size() && m_frames[place].frame() == frame ? &m_frames[place] : nullptr;
}

void GroupMembers::file(MetaLPO* mobile) {
  if (m_frames.empty()) {
    m_motions = mobile->motions();
  } else if (m_motions != mobile->motions()) {
    m_motions = nullptr;
  }
  const std::size_t place = firstFrom(mobile->getFrame());
  if (place == m_frames.size() || m_frames[place].frame() != mobile->getFrame()) {
    m_frames.emplace(m_frames.begin() + static_cast<std::ptrdiff_t>(place), mobile->getFrame());
  }
  m_frames[place].insert(mobile);
  if (m_frames[place].members().size() == 2) {
    ++m_crowdedFrames;
  }
  changedAt(place);
}

void GroupMembers::unfile(const MetaLPO& mobile) {
  const std::size_t place = firstFrom(mobile.getFrame());
  m_frames[place].remove(mobile.getIdent());
  if (m_frames[place].members().size() == 1) {
    --m_crowdedFrames;
  }
  if (m_frames[place].isEmpty()) {
    m_frames.erase(m_frames.begin() + static_cast<std::ptrdiff_t>(place));
  }
  changedAt(place);
}

void GroupMembers::changedAt(std::size_t place) {
  m_sums.resize(std::min(m_sums.size(), place + 1));
}

// Drops the sums from the first frame on whose motions have changed.
void GroupMembers::compareMotions() const {
  if (m_frames.empty() || (m_motions != nullptr && m_comparedChanges == m_motions->latest())) {
    return;
  }
  m_comparedChanges = m_motions == nullptr ? 0 : m_motions->latest();
  const auto changed =
      std::find_if(m_frames.begin(), m_frames.end(),
                   [](const FrameMembers& frame) { return !frame.hasCurrentSpreads(); });
  m_sums.resize(std::min(m_sums.size(), static_cast<std::size_t>(changed - m_frames.begin()) + 1));
}

Spreads GroupMembers::spreadSum(std::size_t count) const {
  compareMotions();
  while (m_sums.size() <= count) {
    const Spreads spreads = m_frames[m_sums.size() - 1].spreads();
    const Spreads& before = m_sums.back();
    m_sums.push_back({before.speed + spreads.speed, before.direction + spreads.direction});
  }
  return m_sums[count];
}

Spreads GroupMembers::spreadsAt(std::size_t place) const {
  compareMotions();
  return m_frames[place].spreads();
}

Spreads GroupMembers::meanSpreads() const {
  if (m_byId.empty()) {
    return {};
  }
  if (!hasSeveralAtOnce()) {
    std::vector<MetaLPO*> all;
    for (const auto& [id, member] : m_byId) {
      all.push_back(member.data());
    }
    return spreadsOf(all);
  }
  const Spreads sum = spreadSum(m_frames.size());
  const auto count = static_cast<double>(m_frames.size());
  return {sum.speed / count, sum.direction / count};
}
