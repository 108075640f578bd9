#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupColor.h"
#include "tracker/display/GroupView.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/Group.h"

#include <gtest/gtest.h>

namespace {

QSharedPointer<MetaLPO> nodeAt(unsigned int ident, unsigned int frame, const cv::Rect& box) {
  const auto seen =
      QSharedPointer<kelDataPhysicalObject>::create("PERSON", box, BoundingBox3D(), cv::Point3f());
  const auto mobile = QSharedPointer<kelDataLinkedPhysicalObject>::create(ident, seen);
  return QSharedPointer<MetaLPO>::create(mobile, frame);
}

TEST(GroupView, KeepsTheMembersAtTheFrameThatIsShown) {
  Util::temporalWinSize = 2;
  const auto group = QSharedPointer<Group>::create();
  group->addMobile(nodeAt(5, 4, {1, 2, 3, 4}));
  group->addMobile(nodeAt(6, 5, {5, 6, 7, 8}));
  Diagnostics::flush();

  GroupView view;
  view.setFrameNumber(7);
  testing::internal::CaptureStdout();
  view.setGroups({{group->getId(), group}, {99, {}}});
  Diagnostics::flush();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "comment (updateDisplay):");
  ASSERT_EQ(view.getRecords().size(), 1U);
  const DisplayGroup& record = view.getRecords().at(group->getId());
  EXPECT_EQ(record.getColor(), group->getColor());
  ASSERT_EQ(record.getMobiles().size(), 1U);
  EXPECT_EQ(record.getMobiles().front().first, 6U);
  EXPECT_EQ(record.getMobiles().front().second, cv::Rect(5, 6, 7, 8));

  Util::temporalWinSize = 0;
  Group::forgetLastId();
  GroupColor::resetColors();
}

}  // namespace
