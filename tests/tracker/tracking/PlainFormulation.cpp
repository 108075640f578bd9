#include "tests/tracker/tracking/PlainFormulation.h"

#include "tracker/geometry/ObjectType.h"
#include "tracker/geometry/Util.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Members = std::map<int, QSharedPointer<MetaLPO>>;

std::vector<MetaLPO*> at(const Members& members, unsigned int frame) {
  std::vector<MetaLPO*> found;
  for (const auto& [id, member] : members) {
    if (member->getFrame() == frame) {
      found.push_back(member.data());
    }
  }
  return found;
}

std::set<unsigned int> framesOf(const Members& members) {
  std::set<unsigned int> frames;
  for (const auto& [id, member] : members) {
    frames.insert(member->getFrame());
  }
  return frames;
}

std::pair<double, double> spreadsOf(const std::vector<MetaLPO*>& members) {
  const auto count = static_cast<double>(members.size());
  double speedSum = 0.0;
  cv::Point3f directionSum;
  for (MetaLPO* member : members) {
    speedSum += member->computeSpeed();
    directionSum += member->computeDirection();
  }
  const auto divisor = static_cast<float>(members.size());
  const cv::Point3f mean(directionSum.x / divisor, directionSum.y / divisor,
                         directionSum.z / divisor);
  double speeds = 0.0;
  double directions = 0.0;
  for (MetaLPO* member : members) {
    const double speed = member->computeSpeed() - speedSum / count;
    speeds += speed * speed;
    const cv::Point3d difference(member->computeDirection() - mean);
    directions +=
        difference.x * difference.x + difference.y * difference.y + difference.z * difference.z;
  }
  return {std::sqrt(speeds / count), std::sqrt(directions / 3 / count)};
}

std::pair<double, double> meanSpreads(const Members& members) {
  double speed = 0.0;
  double direction = 0.0;
  bool severalAtOnce = false;
  const auto frames = framesOf(members);
  for (const unsigned int frame : frames) {
    const auto present = at(members, frame);
    severalAtOnce = severalAtOnce || present.size() > 1;
    const auto [frameSpeed, frameDirection] = spreadsOf(present);
    speed += frameSpeed;
    direction += frameDirection;
  }
  if (severalAtOnce) {
    const auto count = static_cast<double>(frames.size());
    return {speed / count, direction / count};
  }
  std::vector<MetaLPO*> all;
  for (const auto& [id, member] : members) {
    all.push_back(member.data());
  }
  return all.empty() ? std::pair{0.0, 0.0} : spreadsOf(all);
}

/// A copy of a group's members with the one running number that depends on their order of coming.
class Trial {
 public:
  explicit Trial(const Group& group)
      : m_members(group.getMobiles()),
        m_closed(group.getCohesion().closedAvgIntraDist),
        m_average(group.getAvgIntraDist()) {}

  const Members& members() const { return m_members; }

  void add(const QSharedPointer<MetaLPO>& mobile) {
    m_members[mobile->getIdent()] = mobile;
    const double earlier = static_cast<double>(framesOf(m_members).size() - 1);
    const auto present = at(m_members, mobile->getFrame());
    if (present.size() == 1) {
      const auto lower = m_members.lower_bound(mobile->getIdent());
      if (lower != m_members.begin() && std::prev(lower)->first >= 0) {
        const double distance = distanceOf(*std::prev(lower)->second, *mobile);
        m_average = (earlier * m_closed + 2 * distance) / (earlier + 2.0);
      }
      return;
    }
    double sum = 0.0;
    int pairs = 0;
    for (std::size_t i = 0; i < present.size(); ++i) {
      for (std::size_t j = i + 1; j < present.size(); ++j, ++pairs) {
        sum += distanceOf(*present[i], *present[j]);
      }
    }
    m_average = (earlier * m_closed + sum / pairs) / (earlier + 1.0);
  }

  double coherence() const {
    const auto [speed, direction] = meanSpreads(m_members);
    return (Group::distWeight * m_average + Group::speedSimWeight * speed +
            Group::dirSimWeight * direction) /
           (Group::distWeight + Group::speedSimWeight + Group::dirSimWeight);
  }

  /// The member nearest to where the group was last before the frame, or the one so far.
  int representative(unsigned int frame, int soFar) const {
    unsigned int before = frame;
    for (const unsigned int earlier : framesOf(m_members)) {
      before = earlier > 0 && earlier < frame ? earlier : before;
    }
    const auto earlierMembers = at(m_members, before);
    cv::Point3f sum;
    for (const MetaLPO* member : earlierMembers) {
      sum += Util::getCenter3D(member->observation().getBoundingBox3D());
    }
    const auto divisor = static_cast<float>(earlierMembers.size());
    const cv::Point3f center(sum.x / divisor, sum.y / divisor, sum.z / divisor);
    double nearest = 1000.0;
    for (const MetaLPO* member : at(m_members, frame)) {
      const double distance = Util::distance3DPoints(
          Util::getCenter3D(member->observation().getBoundingBox3D()), center);
      if (distance < nearest) {
        nearest = distance;
        soFar = member->getIdent();
      }
    }
    return soFar;
  }

 private:
  static double distanceOf(const MetaLPO& a, const MetaLPO& b) {
    return Util::distance3D(a.observation().getBoundingBox3D(), b.observation().getBoundingBox3D());
  }

  Members m_members;
  double m_closed;
  double m_average;
};

QSharedPointer<MetaLPO> sonOf(const QSharedPointer<MetaLPO>& node) {
  const auto son = node->getBestSon();
  return son == node ? QSharedPointer<MetaLPO>() : son;
}

}  // namespace

std::pair<double, double> PlainFormulation::spreads(const Group& group) {
  return meanSpreads(group.getMobiles());
}

double PlainFormulation::coherence(const Group& group, const QSharedPointer<MetaLPO>& mobile) {
  Trial trial(group);
  trial.add(mobile);
  const double first = trial.coherence();
  const auto member = [&](int id) {
    const auto found = trial.members().find(id);
    return found == trial.members().end() ? QSharedPointer<MetaLPO>() : found->second;
  };
  auto a = member(trial.representative(mobile->getFrame(), group.getBestMobileId()));
  int present = 0;
  for (const MetaLPO* other : at(trial.members(), mobile->getFrame())) {
    present += presence(other->getType());
  }
  const bool pairWithItself = a == mobile && present == 2;
  auto b = pairWithItself ? member(group.getBestMobileId()) : mobile;
  std::vector<double> values;
  while (a && b) {
    trial.add(a);
    if (b->getIdent() != a->getIdent()) {
      trial.add(b);
    }
    values.push_back(trial.coherence());
    b = sonOf(b);
    a = sonOf(a);
  }
  const double decay = static_cast<double>(values.size()) + 1;
  double sum = first;
  double weights = 0.0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double weight = 10.0 * std::exp(-static_cast<double>(i) / decay) / decay;
    sum += weight * values[i];
    weights += weight;
  }
  return sum / weights * 10.0;
}

std::map<const MetaLPO*, const MetaLPO*> PlainFormulation::bestSons(GroupTracker& tracker,
                                                                    unsigned int currentFrame) {
  std::map<const MetaLPO*, const MetaLPO*> sons;
  for (unsigned int k = 1; k <= std::min(currentFrame, Util::temporalWinSize); ++k) {
    const unsigned int frame = currentFrame - k;
    for (const auto& father : tracker.mobilesAt(frame)) {
      double best = -1.0;
      for (unsigned int later = frame + 1; later <= frame + std::max(k - 1, 1U); ++later) {
        for (const auto& son : tracker.mobilesAt(later)) {
          for (const auto& link : son->getFatherLinks()) {
            const auto linked = link.getFather();
            if (!linked || linked->getIdent() != father->getIdent()) {
              continue;
            }
            const double gap = static_cast<int>(son->getFrame() - linked->getFrame());
            const double score =
                link.getReliability() * (100 - gap * GroupTracker::sonDistanceWeight) / 100;
            if (score > best) {
              best = score;
              sons[father.data()] = son.data();
            }
          }
        }
      }
    }
  }
  return sons;
}

std::string PlainFormulation::splitLines(const GroupTracker& tracker) {
  std::string lines;
  for (const auto& group : tracker.getGroups()) {
    for (const auto& [id, member] : group->getMobiles()) {
      auto ancestor = member->getBestFather();
      for (int generation = 0; generation < 5 && ancestor; ++generation) {
        const int other = static_cast<int>(tracker.groupId(ancestor->getPhysicalObject()));
        if (other != -1 && other != group->getId()) {
          lines += fmt::format("Split between {} and {}\n", other, group->getId());
          break;
        }
        ancestor = ancestor->getBestFather();
      }
    }
  }
  return lines;
}

std::map<int, QSharedPointer<MetaLPO>> PlainFormulation::remembered(GroupTracker& tracker,
                                                                    unsigned int currentFrame) {
  std::map<int, QSharedPointer<MetaLPO>> nodes;
  for (unsigned int frame = 1; frame <= currentFrame; ++frame) {
    for (const auto& mobile : tracker.mobilesAt(frame)) {
      if (tracker.node(mobile->getIdent()) == mobile) {
        nodes[mobile->getIdent()] = mobile;
      }
    }
  }
  return nodes;
}

std::string PlainFormulation::dump(GroupTracker& tracker, unsigned int currentFrame) {
  std::ostringstream text;
  text << "------------ Mobiles with Groups at frame " << currentFrame << '\n';
  for (const auto& [id, node] : remembered(tracker, currentFrame)) {
    text << "mobile " << id << " @ frame " << node->getFrame() << " has best father "
         << node->getBestFatherId() << " has best son " << node->getBestSonId()
         << " and is in group " << node->getGroupId() << '\n';
    for (const auto& link : node->getFatherLinks()) {
      if (link.getFather() && link.getSon()) {
        text << "\tlink from " << link.getFather()->getIdent() << " to "
             << link.getSon()->getIdent() << " with reliability " << link.getReliability() << '\n';
      }
    }
    text << "\tLTT chain: ";
    for (const auto& entry : node->chain()) {
      text << entry.ident << " (" << entry.reliability << ") - ";
    }
    text << '\n';
  }
  text << "--------------------\n";
  return text.str();
}

std::string PlainFormulation::groupLines(const GroupTracker& tracker) {
  std::string lines = "------------ Groups:\n";
  for (const auto& group : tracker.getGroups()) {
    lines += fmt::format("- {}, mobiles: ", group->getId());
    for (const auto& object : group->getLPOs()) {
      lines += fmt::format("{} ", static_cast<int>(object->getIdent()));
    }
    lines += fmt::format("startFrame={}, endFrame={}, isUpdated={}\n", group->getStartFrame(),
                         group->getEndFrame(), group->isUpdated());
  }
  return lines + "--------------------\n";
}

void PlainFormulation::updateGroups(GroupTracker& tracker, unsigned int processedFrame) {
  std::map<int, std::map<int, double>> candidates;  // by group and mobile
  for (const auto& mobile : tracker.mobilesAt(processedFrame)) {
    const int home = static_cast<int>(tracker.probableGroup(mobile));
    const auto group = tracker.getGroups().value(home);
    if (mobile->getType().isNoise() || !group ||
        tracker.groupId(mobile->getPhysicalObject()) != GroupTracker::none ||
        group->distance(mobile, static_cast<int>(mobile->getFrame())) >
            GroupTracker::maxDistGroupUpdate) {
      continue;
    }
    const double coherence = group->groupCoherence(mobile);
    if (Group::coherenceThreshold > coherence) {
      candidates[home][mobile->getIdent()] = coherence;
    }
  }
  for (const auto& [home, coherences] : candidates) {
    const auto best =
        std::min_element(coherences.begin(), coherences.end(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    tracker.addMobileToGroup(home, static_cast<unsigned int>(best->first));
  }
  if (!candidates.empty()) {
    updateGroups(tracker, processedFrame);
  }
}
