#include "host/run/TrackerRun.h"
#include "tests/support/host/FakeProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace grouptracker {

namespace {

using testing::ElementsAre;

MobilePointer makeMobile(unsigned id, const cv::Point3f& position = {}) {
  const auto body = QSharedPointer<kelDataPhysicalObject>::create(
      "PERSON", cv::Rect(static_cast<int>(id), 2, 3, 4), BoundingBox3D(), position);
  return MobilePointer::create(id, body);
}

QSharedPointer<kelDataActor> makeActor(unsigned id, const QList<MobilePointer>& mobiles) {
  auto actor = QSharedPointer<kelDataActor>::create();
  actor->setIdent(id);
  for (const auto& mobile : mobiles) {
    actor->addLinkedPhysicalObject(mobile);
  }
  return actor;
}

InputFrame makeFrame(std::int64_t number, const FakeProcess::Actors& actors) {
  InputFrame frame;
  frame.number = number;
  frame.place = {"scene", static_cast<std::uint64_t>(number)};
  frame.actors = actors;
  return frame;
}

/// A run of a process that puts out what a test says.
class Run : public testing::Test {
 protected:
  Run() : m_process(new FakeProcess), run(std::unique_ptr<FakeProcess>(m_process)) {}

  void delayBy(std::uint32_t frames) {
    options.delay = frames;
    run.configure(options);
  }
  FakeProcess& process() { return *m_process; }

 private:
  FakeProcess* m_process;

 protected:
  TrackerRun run;
  TrackerRunOptions options;
};

TEST_F(Run, SaysWhatTheInputSaidOfTheDelayedFrame) {
  delayBy(2);
  const auto first =
      run.advance(makeFrame(10, {makeActor(3, {}), makeActor(1, {makeMobile(7, {5, 6, 0})})}));
  EXPECT_EQ(first.reportedFrame, -1);
  EXPECT_FALSE(first.inputFrame);
  EXPECT_TRUE(first.persons.empty());
  run.advance(makeFrame(20, {}));
  const RunStep step = run.advance(makeFrame(30, {makeActor(4, {})}));
  EXPECT_EQ(step.frame, 3U);
  EXPECT_EQ(step.reportedFrame, 1);
  EXPECT_EQ(step.inputFrame, 10);
  EXPECT_EQ(step.place.text(), "scene:10");
  const Sighting seen{{5.0F, 6.0F}, {7, 2, 3, 4}};
  EXPECT_THAT(step.persons, ElementsAre(RunPerson{3, {}}, RunPerson{1, seen}));
  EXPECT_EQ(run.advance(makeFrame(40, {})).inputFrame, 20);
  EXPECT_TRUE(run.finish().empty());
}

TEST_F(Run, KeepsCountOfFramesAtWhichTheProcessFails) {
  delayBy(1);
  run.advance(makeFrame(10, {}));
  process().fails = true;
  EXPECT_THROW(run.advance(makeFrame(20, {})), ProcessError);
  process().fails = false;
  const RunStep step = run.advance(makeFrame(30, {}));
  EXPECT_EQ(step.reportedFrame, 2);
  EXPECT_EQ(step.inputFrame, 20);
}

TEST_F(Run, WrapsADelayThatIsHigherThanAnyFrame) {
  delayBy(std::numeric_limits<std::uint32_t>::max());
  const RunStep step = run.advance(makeFrame(1, {makeActor(4, {})}));
  EXPECT_EQ(step.reportedFrame, 2);
  EXPECT_FALSE(step.inputFrame);
  EXPECT_TRUE(step.persons.empty());
}

TEST_F(Run, NamesThePersonOfEachObservationNotOfEachId) {
  delayBy(0);
  const auto older = makeMobile(5);
  const auto newer = makeMobile(5);
  run.advance(makeFrame(1, {makeActor(3, {older})}));
  process().groups = {makeActor(0, {older, newer, makeMobile(6)})};
  const RunStep step = run.advance(makeFrame(2, {makeActor(8, {older, newer})}));
  ASSERT_EQ(step.groups.size(), 1U);
  EXPECT_THAT(step.groups[0].members,
              ElementsAre(RunMember{5, 3, {}}, RunMember{5, 8, {}}, RunMember{6, {}, {}}));
}

TEST_F(Run, DecodesWhatTheProcessSaysOfAGroup) {
  delayBy(0);
  const auto open = makeActor(4000000000U, {makeMobile(5, {1, 2, 0})});
  open->addSpecificProperty("Visible", true);
  open->addSpecificProperty("TypeOfGroup", "CROWD");
  open->addSpecificProperty("NumberOfMobiles", QVariant::fromValue<qulonglong>(1));
  open->addSpecificProperty("Merge", -1);
  open->addSpecificProperty("Split", 3);
  const auto ended = makeActor(5, {makeMobile(6)});
  ended->addSpecificProperty("Visible", "false");
  process().groups = {open, ended, makeActor(6, {})};
  const auto groups = run.advance(makeFrame(1, {})).groups;
  ASSERT_EQ(groups.size(), 3U);
  EXPECT_EQ(groups[0].id, 4000000000U);
  EXPECT_TRUE(groups[0].isVisible);
  EXPECT_TRUE(groups[0].isCrowd);
  EXPECT_EQ(groups[0].merge, -1);
  EXPECT_EQ(groups[0].split, 3);
  EXPECT_EQ(groups[0].members[0].place, cv::Point2f(1.0F, 2.0F));
  const RunProperty count{"NumberOfMobiles", std::int64_t{1}};
  EXPECT_EQ(groups[0].properties[1], count) << "by name, whole numbers alike";
  EXPECT_FALSE(groups[1].isVisible);
  EXPECT_FALSE(groups[1].merge);
  EXPECT_FALSE(groups[1].members[0].place);
  EXPECT_TRUE(groups[1].box3D);
  EXPECT_FALSE(groups[2].position) << "without members it is nowhere";
}

TEST_F(Run, HandsOutImagesInMemoryAsTheyWereBeforeTheProcessDrew) {
  options.keepsImages = true;
  options.processDrawsOnImages = true;
  delayBy(0);
  InputFrame frame = makeFrame(1, {});
  frame.image = QSharedPointer<kelDataImage>::create(cv::Mat(2, 2, CV_8UC1, cv::Scalar(9)));
  const RunStep step = run.advance(frame);
  frame.image->mat().setTo(0);
  EXPECT_EQ(step.image->mat().at<uchar>(0, 0), 9);
  frame.imageFile = "1.png";
  EXPECT_FALSE(run.advance(frame).image) << "it can be read again";
}

TEST(MobileOwners, ForgetsMobilesThatNobodyHoldsAnyMore) {
  MobileOwners owners;
  const auto kept = makeMobile(1);
  owners.note(makeFrame(1, {makeActor(9, {kept})}));
  for (unsigned id = 2; id < 20000; ++id) {
    owners.note(makeFrame(id, {makeActor(1, {makeMobile(id)})}));
  }
  EXPECT_LT(owners.size(), 3000U);
  EXPECT_EQ(owners.ownerOf(kept), 9U);
}

}  // namespace

}  // namespace grouptracker
