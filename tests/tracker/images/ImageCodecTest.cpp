#include "tests/support/base/Images.h"
#include "tests/support/base/Texts.h"
#include "tracker/images/LateLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

TEST(ImageCodec, ReadsWhatItWrites) {
  cv::Mat pixels(30, 40, CV_8UC3, cv::Scalar(10, 20, 30));
  pixels.at<cv::Vec3b>(5, 7) = {200, 100, 50};
  const TempFolder folder;
  ASSERT_TRUE(writeImage(folder.path() / "image.png", pixels));
  const cv::Mat read = imageOf(folder.path() / "image.png");
  EXPECT_EQ(cv::norm(pixels, read, cv::NORM_INF), 0);
  EXPECT_TRUE(ImageCodec::loaded().decode({1, 2, 3}).empty());
  EXPECT_THROW(ImageCodec::loaded().encode(".nothing", pixels), cv::Exception);
}

TEST(LateLibrary, SaysWhyItCannotBeLoaded) {
  EXPECT_THAT(errorOf([] { lateInterface("libgrouptracker_nothing.so", "f"); }),
              testing::StartsWith("cannot be loaded: libgrouptracker_nothing.so: "));
  EXPECT_EQ(errorOf([] { lateInterface("libgrouptracker_images.so", "nothing"); }),
            "libgrouptracker_images.so is not of this version");
}

}  // namespace
