#include "host/base/JsonText.h"
#include "host/output/GroupsWriter.h"
#include "host/run/FrameReporter.h"
#include "tests/support/base/Lines.h"
#include "tests/support/base/TempFolder.h"

#include <gtest/gtest.h>

#include <limits>

namespace grouptracker {

namespace {

MobilePointer makeMobile(unsigned id) {
  return MobilePointer::create(id, QSharedPointer<kelDataPhysicalObject>::create());
}

QSharedPointer<kelDataActor> makeActor(unsigned id, const QList<MobilePointer>& mobiles) {
  auto actor = QSharedPointer<kelDataActor>::create();
  actor->setIdent(id);
  for (const auto& mobile : mobiles) {
    actor->addLinkedPhysicalObject(mobile);
  }
  return actor;
}

InputFrame makeFrame(std::int64_t number, const QList<QSharedPointer<kelDataActor>>& actors) {
  InputFrame frame;
  frame.number = number;
  frame.actors = actors;
  return frame;
}

TEST(FrameReporter, ReportsThePersonsAndNumberOfTheDelayedFrame) {
  FrameReporter reporter(2);
  const auto third = makeActor(3, {});
  const auto first = makeActor(1, {});
  reporter.note(makeFrame(10, {third, first}));
  EXPECT_EQ(reporter.report({}).reportedFrame, -1);
  EXPECT_FALSE(reporter.report({}).inputFrame);
  reporter.note(makeFrame(20, {}));
  reporter.note(makeFrame(30, {makeActor(4, {})}));
  const FrameReport report = reporter.report({});
  EXPECT_EQ(report.frame, 3U);
  EXPECT_EQ(report.reportedFrame, 1);
  EXPECT_EQ(report.inputFrame, 10);
  EXPECT_EQ(report.persons, (std::vector<std::uint32_t>{3, 1}));
  reporter.note(makeFrame(40, {}));
  EXPECT_EQ(reporter.report({}).inputFrame, 20);
}

TEST(FrameReporter, WrapsADelayThatIsHigherThanAnyFrame) {
  FrameReporter reporter(std::numeric_limits<std::uint32_t>::max());
  reporter.note(makeFrame(1, {makeActor(4, {})}));
  EXPECT_EQ(reporter.report({}).reportedFrame, 2);
  EXPECT_FALSE(reporter.report({}).inputFrame);
  EXPECT_TRUE(reporter.report({}).persons.empty());
}

TEST(FrameReporter, NamesThePersonOfEachObservationNotOfEachId) {
  FrameReporter reporter(0);
  const auto older = makeMobile(5);
  const auto newer = makeMobile(5);
  const auto nobodys = makeMobile(6);
  reporter.note(makeFrame(1, {makeActor(3, {older})}));
  reporter.note(makeFrame(2, {makeActor(8, {older, newer})}));
  const auto report = reporter.report({makeActor(0, {older, newer, nobodys})});
  EXPECT_EQ(report.groups[0].persons,
            (std::vector<std::optional<std::uint32_t>>{3, 8, std::nullopt}));
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

TEST(GroupsWriter, KeepsTypesAndExactNumbers) {
  const TempFolder folder;
  GroupsWriter writer((folder.path() / "groups.jsonl").string());
  FrameReport report;
  report.frame = 4294967295U;
  report.reportedFrame = -2;
  writer.write(report);

  const auto group = makeActor(4, {makeMobile(90), makeMobile(4000000000U)});
  group->setCurrentPosition({12.78F, -0.1F, std::numeric_limits<float>::infinity()});
  group->setBoundingBox2D({1, -2, 3, 4});
  group->setBoundingBox3D({-10000, -10000, -10000, 10000, 10000, 1e-7F});
  group->addSpecificProperty("Visible", true);
  group->addSpecificProperty("TypeOfGroup", QString("CROWD \"\\\n\u00e9"));
  group->addSpecificProperty("NumberOfMobiles", QVariant::fromValue<qulonglong>(2));
  group->addSpecificProperty("Merge", -1);
  report.inputFrame = 930;
  report.persons = {3, 7};
  report.groups.push_back({group, {3, std::nullopt}});
  report.groups.push_back({makeActor(5, {}), {}});
  writer.write(report);

  const auto lines = linesOf(textOf(folder.path() / "groups.jsonl"));
  ASSERT_EQ(lines.size(), 2U) << "lines are there while the writer is still open";
  EXPECT_EQ(lines[0], R"({"frame": 4294967295, "reportedFrame": -2, "inputFrame": null, )"
                      R"("persons": [], "groups": []})");
  EXPECT_EQ(lines[1],
            R"({"frame": 4294967295, "reportedFrame": -2, "inputFrame": 930, "persons": [3, 7], )"
            R"("groups": [{"id": 4, "mobiles": [90, 4000000000], "persons": [3, null], )"
            R"("position": [12.779999732971191, -0.10000000149011612, null], )"
            R"("box2d": [1, -2, 3, 4], )"
            R"("box3d": [-10000, -10000, -10000, 10000, 10000, 1.0000000116860974e-07], )"
            R"("properties": {"Merge": -1, "NumberOfMobiles": 2, )"
            R"("TypeOfGroup": "CROWD \"\\\u000aé", "Visible": true}}, )"
            R"({"id": 5, "mobiles": [], "persons": [], "properties": {}}]})");
}

}  // namespace

}  // namespace grouptracker
