#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/ROI.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

const cv::Rect box(1, 2, 3, 4);

TEST(ROI, OwnsItsPixelsHoweverTheyAreHandedOver) {
  cv::Mat frame(8, 8, CV_8UC3, cv::Scalar::all(7));
  const ROI copied(frame, box);
  const ROI partOfTheFrame(frame(box), box);
  frame.setTo(cv::Scalar::all(9));
  EXPECT_EQ(copied.getImage().at<cv::Vec3b>(0, 0)[0], 7);
  EXPECT_EQ(partOfTheFrame.getImage().at<cv::Vec3b>(0, 0)[0], 7);
  EXPECT_EQ(partOfTheFrame.getRect(), box);

  const cv::Mat frameToo = frame;
  const ROI shared(std::move(frame), box);
  EXPECT_NE(shared.getImage().data, frameToo.data);

  cv::Mat patch(4, 3, CV_32FC3);
  const uchar* const pixels = patch.data;
  const ROI taken(std::move(patch), box);
  EXPECT_EQ(taken.getImage().data, pixels);
}

TEST(ROI, PrintsItsTraceForEveryPatchAndReleasesIt) {
  Diagnostics::flush();
  testing::internal::CaptureStdout();
  ROI roi(cv::Mat(4, 3, CV_32FC3), box);
  roi = ROI(cv::Mat(), box);
  roi.release();
  Diagnostics::flush();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "here it goes bad\nhere it went bad\nhere it goes bad\nhere it went bad\n");
  EXPECT_TRUE(roi.getImage().empty());
  EXPECT_EQ(roi.getRect(), cv::Rect());
}

}  // namespace
