#include "host/pictures/Labels.h"

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

namespace grouptracker {

namespace {

const cv::Scalar red(0, 0, 200);

/// The pixels that are not white any more.
cv::Rect written(const cv::Mat& picture) {
  cv::Mat dark;
  cv::inRange(picture, cv::Scalar(), cv::Scalar(254, 254, 254), dark);
  return cv::boundingRect(dark);
}

TEST(Labels, StandBesidePeopleAndInsideThePicture) {
  cv::Mat picture(200, 200, CV_8UC3, cv::Scalar::all(255));
  Labels labels(picture, 1.0);
  const cv::Rect person(80, 2, 40, 80);  // no room above
  labels.keepFree(person);
  labels.addPlate("12", person, red);
  EXPECT_FALSE(written(picture).empty());
  EXPECT_TRUE((written(picture) & person).empty());
}

TEST(Labels, AreLeftOutInACrowdButForGroups) {
  cv::Mat picture(200, 200, CV_8UC3, cv::Scalar::all(255));
  Labels labels(picture, 1.0);
  labels.keepFree({0, 0, 200, 200});
  labels.addName("7", {90, 90, 10, 10}, red, red);
  EXPECT_TRUE(written(picture).empty());
  labels.addPlate("3", {90, 90, 10, 10}, red);
  const cv::Rect first = written(picture);
  EXPECT_FALSE(first.empty());
  labels.addPlate("4", {90, 90, 10, 10}, red);
  EXPECT_GT(written(picture).area(), first.area()) << "at another place";
}

}  // namespace

}  // namespace grouptracker
