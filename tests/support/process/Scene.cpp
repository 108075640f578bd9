#include "tests/support/process/Scene.h"

#include <algorithm>

namespace {

constexpr std::size_t longestList = 30;  // mobiles of an actor, as the host hands them over

}  // namespace

QSharedPointer<kelDataLinkedPhysicalObject> SceneMobile::make() const {
  const cv::Point2f& place = m_place;
  const BoundingBox3D box3D{place.x + m_size.x / 2, place.y + m_size.y / 2, m_size.z,
                            place.x - m_size.x / 2, place.y - m_size.y / 2, 0.0F};
  const cv::Rect standing(100 + cvRound(40 * place.x), 100 + cvRound(20 * place.y), 20, 60);
  const auto seen = QSharedPointer<kelDataPhysicalObject>::create(
      m_type, m_box2D.value_or(standing), box3D, cv::Point3f(place.x, place.y, 0.0F));
  return QSharedPointer<kelDataLinkedPhysicalObject>::create(m_ident, seen);
}

SceneMobile& SceneFrame::person(unsigned int ident) {
  const auto known = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
    return entry.mobile && entry.mobile->m_ident == ident;
  });
  if (known != m_entries.end()) {
    return *known->mobile;
  }
  m_entries.push_back({ident, SceneMobile(ident)});
  return *m_entries.back().mobile;
}

void SceneFrame::emptyActor(unsigned int ident) {
  m_entries.push_back({ident, {}});
}

void Scene::walk(unsigned int walker, unsigned int first, unsigned int last,
                 const cv::Point2f& start, const cv::Point2f& step) {
  for (unsigned int number = first; number <= last; ++number) {
    const unsigned int ident = idOf(walker, number);
    const cv::Point2f place = start + step * static_cast<float>(number - first);
    SceneMobile& mobile = frame(number).person(ident).at(place.x, place.y).actor(walker);
    if (const auto before = m_lastOfWalker.find(walker); before != m_lastOfWalker.end()) {
      mobile.follows(before->second);
    }
    m_lastOfWalker[walker] = ident;
  }
}

const QList<QSharedPointer<kelDataActor>>& Scene::actors(unsigned int frame) {
  for (unsigned int number = m_actors.empty() ? 1 : m_actors.rbegin()->first + 1; number <= frame;
       ++number) {
    auto& actors = m_actors[number];
    for (const auto& entry : m_frames[number].m_entries) {
      actors.append(makeActor(number, entry));
    }
  }
  return m_actors[frame];
}

QSharedPointer<kelDataActor> Scene::makeActor(unsigned int frame, const SceneFrame::Entry& entry) {
  auto actor = QSharedPointer<kelDataActor>::create();
  actor->setIdent(entry.actor);
  if (!entry.mobile) {
    return actor;
  }
  const SceneMobile& said = *entry.mobile;
  const auto object = said.make();
  std::list<QSharedPointer<kelDataLinkedPhysicalObject>> list;
  if (said.m_predecessor) {
    actor->setIdent(m_mobiles.at(*said.m_predecessor).actor);
    list = m_lists[*said.m_predecessor];
  }
  if (said.m_actor) {
    actor->setIdent(*said.m_actor);
  }
  for (const unsigned int ident : said.m_chain) {
    list.push_back(mobile(ident));
  }
  for (const auto& [father, reliability] : said.m_fathers) {
    kelDataLinkedPhysicalObject::addFatherLink(mobile(father), object, reliability);
  }
  list.push_back(object);
  while (list.size() > longestList) {
    list.pop_front();
  }
  for (const auto& member : list) {
    actor->addLinkedPhysicalObject(member);
  }
  actor->setType(object->getPhysicalObject()->getType());
  actor->setBoundingBox3D(object->getPhysicalObject()->getBoundingBox3D());
  m_lists[object->getIdent()] = list;
  m_mobiles[object->getIdent()] = {object, frame, actor->getIdent()};
  return actor;
}

void Scene::forgetBefore(unsigned int frame) {
  std::erase_if(m_frames, [&](const auto& entry) { return entry.first < frame; });
  std::erase_if(m_actors, [&](const auto& entry) { return entry.first < frame; });
  std::erase_if(m_mobiles, [&](const auto& entry) { return entry.second.frame < frame; });
  std::erase_if(m_lists, [&](const auto& entry) { return m_mobiles.count(entry.first) == 0; });
}
