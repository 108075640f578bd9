#include "host/run/EventDetector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace grouptracker {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A visible group of persons; their mobiles do not matter.
RunGroup group(std::uint32_t id, const std::vector<std::uint32_t>& persons, std::int64_t merge = -1,
               std::int64_t split = -1) {
  RunGroup state;
  state.id = id;
  for (const std::uint32_t person : persons) {
    state.members.push_back({1000 + person, person, std::nullopt});
  }
  state.isVisible = true;
  state.merge = merge;
  state.split = split;
  return state;
}

/// A group of which the output repeats the last members, and nothing else.
RunGroup ended(std::uint32_t id, const std::vector<std::uint32_t>& persons) {
  RunGroup state = group(id, persons);
  state.isVisible = false;
  state.merge.reset();
  state.split.reset();
  return state;
}

/// A group of the evidence, first listed at a frame, that came out of others.
RunGroup ofEvidence(std::uint32_t id, const std::vector<std::uint32_t>& persons, std::int64_t since,
                    const std::vector<std::uint32_t>& from = {}) {
  RunGroup state = group(id, persons);
  state.merge.reset();
  state.split.reset();
  state.since = since;
  state.from = from;
  return state;
}

/// Feeds frames and returns the events in words.
class Events : public testing::Test {
 protected:
  std::vector<std::string> at(const std::vector<RunGroup>& groups) {
    RunStep frame;
    frame.reportedFrame = ++m_frame;
    frame.frame = static_cast<std::uint32_t>(m_frame) + 2;
    frame.groups = groups;
    if (!groups.empty() && groups.front().since) {
      m_source = GroupSource::evidence;
    }
    frame.source = m_source;
    frame.inputFrame = m_frame;
    std::vector<std::string> texts;
    for (const TrackedEvent& event : m_detector.next(frame)) {
      EXPECT_EQ(event.reportedFrame, m_frame);
      texts.push_back(describe(event));
    }
    return texts;
  }

 private:
  EventDetector m_detector;
  std::int32_t m_frame = 0;
  GroupSource m_source = GroupSource::process;
};

TEST_F(Events, OfTheEvidenceNameOriginsAndReturns) {
  EXPECT_THAT(at({ofEvidence(1, {1, 2}, 1), ofEvidence(2, {3, 4}, 1)}),
              ElementsAre("group 1 created: 1, 2", "group 2 created: 3, 4"));
  EXPECT_THAT(at({ofEvidence(1, {1, 2, 3, 4}, 1, {1, 2})}), ElementsAre("group 2 merged into 1"));
  EXPECT_THAT(at({ofEvidence(1, {1, 2}, 1), ofEvidence(3, {3, 4}, 3, {1})}),
              ElementsAre("group 3 created: 3, 4", "group 3 split from 1", "3 left group 1",
                          "4 left group 1"));
  EXPECT_THAT(at({ofEvidence(3, {3, 4}, 3)}), ElementsAre("group 1 ended"));
  EXPECT_THAT(at({ofEvidence(1, {1, 2}, 1), ofEvidence(3, {3, 4}, 3)}),
              ElementsAre("1 joined group 1", "2 joined group 1"));
  EXPECT_THAT(at({}), ElementsAre("group 1 ended", "group 3 ended"));
}

TEST_F(Events, FollowTheLifeOfAGroup) {
  EXPECT_THAT(at({group(4, {7, 3})}), ElementsAre("group 4 created: 3, 7"));
  EXPECT_THAT(at({group(4, {3, 7})}), IsEmpty());
  EXPECT_THAT(at({group(4, {3, 9})}), ElementsAre("9 joined group 4", "7 left group 4"));
  EXPECT_THAT(at({ended(4, {3, 9})}), ElementsAre("group 4 ended"));
  EXPECT_THAT(at({ended(4, {3, 9})}), IsEmpty());
  EXPECT_THAT(at({group(4, {3})}), ElementsAre("3 joined group 4")) << "continued";
  EXPECT_THAT(at({}), ElementsAre("group 4 removed"));
}

TEST_F(Events, TellASplitOnceWhileItStaysInTheOutput) {
  at({group(1, {1, 2, 3, 4})});
  EXPECT_THAT(at({group(1, {1, 2}), group(2, {3, 4}, -1, 1)}),
              ElementsAre("group 2 created: 3, 4", "group 2 split from 1", "3 left group 1",
                          "4 left group 1"));
  EXPECT_THAT(at({group(1, {1, 2}), ended(2, {3, 4})}), ElementsAre("group 2 ended"));
  EXPECT_THAT(at({group(1, {1, 2}), group(2, {3, 4}, -1, 1)}),
              ElementsAre("3 joined group 2", "4 joined group 2"));
  EXPECT_THAT(at({group(1, {1, 2}), group(2, {3, 4}, -1, 5)}), ElementsAre("group 2 split from 5"));
}

// The output names group 9 only, the last of two that merged into group 4 at once.
TEST_F(Events, FindAllGroupsThatWentUpInOneAtOneFrame) {
  at({ended(2, {8}), group(4, {3}), group(6, {1, 5}), group(9, {2})});
  EXPECT_THAT(at({group(4, {1, 2, 3, 5}, 9)}),
              ElementsAre("group 9 merged into 4", "group 6 merged into 4", "group 2 removed"));
  EXPECT_THAT(at({group(4, {1, 2, 3, 5}, 9)}), IsEmpty());
}

TEST_F(Events, TheGroupToWhichMostChangedIsTheHeirOfOneThatIsGone) {
  at({group(1, {6}), group(2, {7}), group(3, {8}), group(9, {1, 2, 3, 4, 5})});
  EXPECT_THAT(at({group(1, {6, 1}), group(2, {7, 2, 3}), group(3, {8, 4, 5})}),
              ElementsAre("group 9 merged into 2", "1 joined group 1", "4 joined group 3",
                          "5 joined group 3"))
      << "the lowest of equals";
}

TEST_F(Events, TellAMergeWithAGroupThatWasNeverListed) {
  at({group(4, {3, 5})});
  EXPECT_THAT(at({group(4, {3, 5, 6}, 7)}),
              ElementsAre("group 7 merged into 4", "6 joined group 4"));
}

TEST_F(Events, PassOverMobilesWithoutPerson) {
  RunGroup strangers = group(1, {1, 2});
  strangers.members[1].person.reset();
  EXPECT_THAT(at({strangers}), ElementsAre("group 1 created: 1"));
  strangers.members[1].mobile = 77;
  EXPECT_THAT(at({strangers}), IsEmpty());
}

/// Who is in which group according to the events alone.
class Replay {
 public:
  void apply(const TrackedEvent& event) {
    if (event.kind == EventKind::ended || event.kind == EventKind::removed) {
      m_members.erase(event.group);
    }
    if (event.kind == EventKind::merged) {
      m_members.erase(*event.other);
    }
    for (const std::uint32_t person : event.persons) {
      if (event.kind == EventKind::left) {
        EXPECT_EQ(m_members[event.group].erase(person), 1U);
      } else {
        EXPECT_TRUE(m_members[event.group].insert(person).second);
      }
    }
    std::erase_if(m_members, [](const auto& entry) { return entry.second.empty(); });
  }
  const std::map<std::uint32_t, std::set<std::uint32_t>>& members() const { return m_members; }

 private:
  std::map<std::uint32_t, std::set<std::uint32_t>> m_members;
};

TEST(EventDetector, LosesNoMemberWhateverTheOutputSays) {
  std::mt19937 random(7);
  const auto below = [&random](unsigned bound) { return random() % bound; };
  EventDetector detector;
  Replay replay;
  for (std::uint32_t step = 1; step <= 3000; ++step) {
    RunStep frame;
    frame.frame = step;
    std::map<std::uint32_t, std::set<std::uint32_t>> expected;
    const std::uint32_t absent = below(6);  // the only one that may have gone up in another
    for (std::uint32_t id = 0; id < 6; ++id) {
      if (id == absent || below(4) == 0) {
        continue;
      }
      std::vector<std::uint32_t> persons;
      for (std::uint32_t person = 0; person < 5; ++person) {
        if (below(3) == 0) {
          persons.push_back(person);
        }
      }
      const bool isVisible = below(4) != 0;
      const std::int64_t merge = below(3) == 0 ? std::int64_t{absent} : -1;
      frame.groups.push_back(isVisible ? group(id, persons, merge) : ended(id, persons));
      if (isVisible && !persons.empty()) {
        expected[id] = {persons.begin(), persons.end()};
      }
    }
    for (const TrackedEvent& event : detector.next(frame)) {
      replay.apply(event);
    }
    ASSERT_EQ(replay.members(), expected) << "step " << step;
  }
}

}  // namespace

}  // namespace grouptracker
