#include "host/people/ActorMaker.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <thread>
#include <vector>

namespace grouptracker {

namespace {

MobilePointer mobile(std::uint32_t id) {
  return MobilePointer::create(
      id, QSharedPointer<kelDataPhysicalObject>::create("KIND" + std::to_string(id),
                                                        cv::Rect(0, 0, static_cast<int>(id), 1),
                                                        BoundingBox3D(), cv::Point3f()));
}

ActorPlan begins(std::uint32_t id, std::vector<MobilePointer> mobiles) {
  return {id, {}, {}, false, false, std::move(mobiles)};
}

ActorPlan goesOn(std::uint32_t id, bool losesFirst, const MobilePointer& added) {
  return {id, {}, {}, true, losesFirst, {added}};
}

InputFrame frameOf(ActorMaker& maker, std::vector<ActorPlan> plans) {
  InputFrame frame;
  frame.plans = std::move(plans);
  maker.make(frame);
  return frame;
}

using Ids = std::vector<std::uint32_t>;

Ids listOf(const kelDataActor& actor) {
  Ids ids;
  for (const auto& mobile : actor.getLinkedPhysicalObjectList()) {
    ids.push_back(mobile->getIdent());
  }
  return ids;
}

/// People who come and go while frames are kept for some time, one of them on another thread.
class Crowd {
 public:
  void step() {
    std::vector<ActorPlan> plans;
    std::map<std::uint32_t, Ids> lists;
    for (std::uint32_t person = 1; person <= 5; ++person) {
      if (m_draw() % 8 == 0) {
        continue;
      }
      const MobilePointer added = mobile(++m_mobiles);
      const auto before = m_lists.find(person);
      if (before == m_lists.end() || m_draw() % 16 == 0) {
        const MobilePointer first = mobile(++m_mobiles);
        lists[person] = {first->getIdent(), added->getIdent()};
        plans.push_back(begins(person, {first, added}));
        continue;
      }
      Ids& list = lists[person] = before->second;
      const bool losesFirst = m_draw() % 2 == 0;
      list.erase(list.begin(), list.begin() + (losesFirst ? 1 : 0));
      list.push_back(added->getIdent());
      plans.push_back(goesOn(person, losesFirst, added));
    }
    m_lists = lists;
    m_held.push_back({frameOf(m_maker, std::move(plans)), lists});
    while (!m_held.empty() && m_draw() % 3 != 0) {
      const auto gone = m_held.begin() + static_cast<std::ptrdiff_t>(m_draw() % m_held.size());
      std::thread([frame = std::move(gone->frame)]() mutable { frame = InputFrame(); }).join();
      m_held.erase(gone);
    }
  }

  void check() const {
    for (const Held& held : m_held) {
      ASSERT_EQ(held.frame.actors.size(), static_cast<int>(held.lists.size()));
      for (const auto& actor : held.frame.actors) {
        const Ids& expected = held.lists.at(actor->getIdent());
        ASSERT_EQ(listOf(*actor), expected);
        ASSERT_EQ(actor->getType(), "KIND" + std::to_string(expected.back()));
        ASSERT_EQ(actor->getBoundingBox2D().width, static_cast<int>(expected.back()));
      }
    }
  }

 private:
  struct Held {
    InputFrame frame;
    std::map<std::uint32_t, Ids> lists;
  };

  std::mt19937 m_draw{7};
  ActorMaker m_maker;
  std::uint32_t m_mobiles = 0;
  std::map<std::uint32_t, Ids> m_lists;  ///< of the latest frame
  std::vector<Held> m_held;
};

TEST(ActorMaker, ListsWhatIsPlannedAndChangesNoFrameThatIsHeld) {
  Crowd crowd;
  for (int i = 0; i < 2000; ++i) {
    crowd.step();
    ASSERT_NO_FATAL_FAILURE(crowd.check()) << i;
  }
}

TEST(ActorMaker, UsesAgainWhatNobodyHolds) {
  ActorMaker maker;
  auto kept = frameOf(maker, {begins(7, {mobile(1), mobile(2)})});
  auto second = frameOf(maker, {goesOn(7, true, mobile(3))});
  const kelDataActor* const released = second.actors[0].data();
  EXPECT_NE(released, kept.actors[0].data());
  second = InputFrame();
  auto third = frameOf(maker, {goesOn(7, true, mobile(4))});
  EXPECT_EQ(third.actors[0].data(), released);
  EXPECT_EQ(listOf(*third.actors[0]), (Ids{3, 4}));
  EXPECT_EQ(listOf(*kept.actors[0]), (Ids{1, 2}));

  third.actors[0]->addSpecificProperty("Mark", 1);
  third = InputFrame();
  third = frameOf(maker, {begins(7, {})});
  EXPECT_TRUE(third.actors[0]->getSpecificProperties().isEmpty());
  EXPECT_EQ(third.actors[0]->getType(), "UNKNOWN");
  EXPECT_THROW(frameOf(maker, {goesOn(7, false, mobile(5))}), std::logic_error);
  EXPECT_THROW(frameOf(maker, {goesOn(8, false, mobile(6))}), std::logic_error);
}

// Those of a person who has left come back to nobody.
TEST(ActorMaker, IsOutlivedByItsActors) {
  InputFrame frame;
  {
    ActorMaker maker;
    frame = frameOf(maker, {begins(7, {mobile(1)})});
    frameOf(maker, {});
    frameOf(maker, {});
  }
  EXPECT_EQ(listOf(*frame.actors[0]), Ids{1});
}

}  // namespace

}  // namespace grouptracker
