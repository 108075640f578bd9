#include "host/base/InputError.h"
#include "host/explain/DecisionLog.h"
#include "host/explain/Explainer.h"
#include "host/output/RunReplay.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace grouptracker {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// Two groups that merge; a third person joins one of them. Mobile 10 f + p is person p at frame f.
const char* const diagnostics = R"(parameter file name: p.txt
********** Frame 3 *************

TPO id: 1
   type: PERSON,    height: 1.700000,    width: 0.500000
   id: 11,    type: PERSON,    height: 1.700000,    width: 0.500000
TPO id: 2
   id: 12,    type: PERSON,    height: 1.700000,    width: 0.500000
TPO id: 3
   id: 13,    type: PERSON,    height: 1.700000,    width: 0.500000
TPO id: 4
   id: 14,    type: PERSON,    height: 1.700000,    width: 0.500000
mobiles at processed frame 1:
11 (PERSON), 12 (PERSON), 13 (PERSON), 14 (PERSON), 
not adding mobile 13 to group 7 because of an ancestor because of coherence 4.200000created group 0 from pair 11 and 12 with group coherence 3.900000
properties: 0.500000, 0.100000, 0.200000 (dist, speed, dir)
created group 1 from pair 13 and 14 with group coherence 1.000000
properties: 0.500000, 0.100000, 0.200000 (dist, speed, dir)
------------ Groups:
- 0, mobiles: 11 12 startFrame=1, endFrame=-1, isUpdated=true
- 1, mobiles: 13 14 startFrame=1, endFrame=-1, isUpdated=true, splitted from 0 at frame 3
--------------------
********** Frame 4 *************

TPO id: 1
   id: 11,    type: PERSON,    height: 1.700000,    width: 0.500000
   id: 21,    type: PERSON,    height: 1.700000,    width: 0.500000
TPO id: 3
   id: 23,    type: PERSON,    height: 1.700000,    width: 0.500000
TPO id: 5
   id: 25,    type: PERSON,    height: 1.700000,    width: 0.500000
mobiles at processed frame 2:
21 (PERSON), 23 (PERSON), 25 (PERSON), 
0 1 ------------ Groups:
- 0, mobiles: 11 12 13 14 21 23 25 startFrame=1, endFrame=-1, isUpdated=true, merged with 1 at frame 2
--------------------
remove group 7
)";

const char* const dump = R"(------------ Mobiles with Groups at frame 4
mobile 11 @ frame 1 has best father 11 has best son 21 and is in group 0
mobile 21 @ frame 2 has best father 11 has best son 31 and is in group -1
	link from 11 to 21 with reliability 1
	LTT chain: 
mobile 13 @ frame 2 has best father -1 has best son 99 and is in group 1
mobile 14 @ frame 2 has best father -1 has best son 99 and is in group 0
mobile 25 @ frame 2 has best father 14 has best son -1 and is in group -1
	link from 11 to 25 with reliability 0.25
	link from 13 to 25 with reliability 0.5
--------------------
)";

class Explanation : public testing::Test {
 protected:
  static DecisionLog read(MobileDump* mobiles = nullptr) {
    std::istringstream in(diagnostics);
    return DecisionLog::read(in, "lines.txt", mobiles);
  }

  static Explainer explainerOf(const DecisionLog& log) {
    Explainer explainer(4.0);
    for (const RunStep& step : log.steps()) {
      explainer.add(step);
    }
    return explainer;
  }
};

TEST_F(Explanation, TellsTheLifeOfAGroupFromTheLines) {
  const DecisionLog log = read();
  const Explainer explainer = explainerOf(log);
  EXPECT_EQ(
      explainer.explainGroup(0),
      "frame 1 (decided at 3): founded by the pair of person 1 (mobile 11) and person 2 "
      "(mobile 12), coherence 3.900 below threshold 4 (distance 0.500, speed 0.100, direction "
      "0.200)\n"
      "frame 2 (decided at 4): group 1 merged into it\n"
      "frame 2 (decided at 4): person 3 (mobile 23) joined\n"
      "frame 2 (decided at 4): person 5 (mobile 25) joined\n"
      "frame 2 (decided at 4): person 2 left\n");
  EXPECT_THAT(explainer.explainGroup(1), HasSubstr("frame 1 (decided at 3): split from group 0\n"));
  EXPECT_THAT(explainer.explainGroup(1), HasSubstr("merged into group 0"));
  EXPECT_THAT(explainer.explainGroup(0, 2),
              StartsWith("frame 2 (decided at 4): group 1 merged into it"));
  EXPECT_THAT(log.membersAt(0, 2), ElementsAre(1, 3, 5));
  EXPECT_EQ(explainer.explainGroup(5), "");
}

TEST_F(Explanation, ListsTheClosestDecisionsFirstAlsoOutOfUnfinishedLines) {
  const DecisionLog log = read();
  const std::string list = explainerOf(log).listUncertain(2);
  EXPECT_THAT(list, StartsWith("group 0, frame 1 (decided at 3): founded by the pair"));
  EXPECT_THAT(list, HasSubstr("\ngroup 7, frame 1 (decided at 3): person 3 (mobile 13) was not "
                              "added in spite of an ancestor, coherence 4.200 not below"));
}

TEST_F(Explanation, NamesLinksAndSharedSonsOutOfTheMobileDump) {
  const TempFolder folder;
  MobileDump mobiles(folder.write("dump.txt", dump));
  const DecisionLog log = read(&mobiles);
  const std::string text = explainerOf(log).explainGroup(0);
  EXPECT_THAT(text, HasSubstr("group 1 merged into it: 14 and 13 share the best son 99\n"));
  EXPECT_THAT(text, HasSubstr("person 5 (mobile 25) joined: through the link to 11, reliability "
                              "0.25\n"));
}

// Frame 3 is not in the groups file, so what was decided there has no step that could tell it.
TEST_F(Explanation, OfAReplayedRunIsInItsStepsAndNamesTheFramesOfTheInput) {
  std::istringstream in(
      R"({"frame": 2, "reportedFrame": 0, "inputFrame": null, "persons": [], "groups": []}
{"frame": 4, "reportedFrame": 2, "inputFrame": 70, "persons": [], "groups": []}
{"frame": 5, "reportedFrame": 3, "inputFrame": 80, "persons": [], "groups": []}
)");
  RunReplay run(in, "g.jsonl");
  run.takeDecisions(read().decisions());
  Explainer explainer(4.0);
  std::vector<std::size_t> counts;
  for (RunStep step; run.next(step);) {
    counts.push_back(step.decisions.size());
    explainer.add(step);
  }
  EXPECT_THAT(counts, ElementsAre(0U, 5U, 0U));
  EXPECT_THAT(explainer.explainGroup(0),
              StartsWith("frame 70 (decided 2 frames later): group 1 merged into it\n"));
}

// A list of the mobiles that says something else behind an id used to be read without end.
TEST(DecisionLog, PassesOverListsOfMobilesThatItDoesNotKnow) {
  std::istringstream in(
      "********** Frame 3 *************\nmobiles at processed frame 1:\n1 (A(b)), \n12 ), \n");
  EXPECT_TRUE(DecisionLog::read(in, "lines.txt", nullptr).decisions().empty());
}

// The tracker shows ids with a sign.
TEST(DecisionLog, KnowsPersonsAndMobilesFromTwoToTheThirtyFirstOn) {
  std::istringstream in(
      "********** Frame 3 *************\nTPO id: -294967296\n   id: -1294967295,    type: PERSON,\n"
      "TPO id: 7\n   id: -1294967294,    type: PERSON,\nmobiles at processed frame 1:\n"
      "-1294967295 (PERSON), -1294967294 (PERSON), \n"
      "created group 0 from pair -1294967295 and -1294967294 with group coherence 1.000000\n"
      "------------ Groups:\n- 0, mobiles: -1294967295 -1294967294 startFrame=1, endFrame=-1, "
      "isUpdated=true\n--------------------\n");
  const DecisionLog log = DecisionLog::read(in, "lines.txt", nullptr);
  EXPECT_THAT(log.membersAt(0, 1), ElementsAre(7, 4000000000));
  ASSERT_EQ(log.decisions().size(), 1U);
  EXPECT_THAT(log.decisions()[0].mobiles, ElementsAre(3000000001, 3000000002));
}

TEST(ExplainCommand, AnswersForARunAndRefusesWhatIsNoRun) {
  const TempFolder folder;
  folder.write("p.txt", sampleParameters());
  folder.write("scene.jsonl", walkingScene(12));
  Program(folder.path())
      .run({"run", "scene.jsonl", "--parameters", "p.txt", "--actors", "g.jsonl", "--diagnostics",
            "lines.txt", "--mobile-dump", "dump.txt"});
  Program asking(folder.path());
  EXPECT_EQ(asking.run({"explain", "lines.txt", "--group", "0", "--mobile-dump", "dump.txt"}), 0);
  EXPECT_THAT(asking.output(), HasSubstr("founded by the pair of person 1 (mobile "));
  Program uncertain(folder.path());
  EXPECT_EQ(uncertain.run({"explain", "lines.txt", "--uncertain", "5"}), 0);
  EXPECT_THAT(uncertain.output(), StartsWith("group 0, frame "));
  Program atAFrame(folder.path());
  EXPECT_EQ(atAFrame.run({"explain", "lines.txt", "--group", "0", "--frame", "8"}), 0);
  EXPECT_THAT(atAFrame.output(), StartsWith("members at frame 8: 1, 2"));
  Program unknown(folder.path());
  EXPECT_EQ(unknown.run({"explain", "lines.txt", "--group", "9"}), 2);
  EXPECT_EQ(unknown.errors(), "lines.txt: says nothing about group 9\n");
  Program wrong(folder.path());
  EXPECT_EQ(wrong.run({"explain", "p.txt", "--group", "0"}), 2);
  EXPECT_EQ(wrong.errors(), "p.txt: holds no frame of a run's diagnostics\n");
}

}  // namespace

}  // namespace grouptracker
