#include "host/pictures/PictureExchange.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace grouptracker {

namespace {

cv::Mat picture(int number) {
  return cv::Mat(1, 1, CV_32S, cv::Scalar(number));
}

TEST(PictureExchange, HandsOverEveryPictureInOrder) {
  constexpr int count = 200;
  PictureExchange exchange;
  std::thread drawer([&] {
    for (int i = 0; i < count; ++i) {
      exchange.add(picture(i), i);
    }
    exchange.finish();
  });
  std::vector<int> shown;
  while (shown.size() < count) {
    if (const auto taken = exchange.take()) {
      shown.push_back(taken->at<int>(0));
    }
  }
  drawer.join();
  for (int i = 0; i < count; ++i) {
    EXPECT_EQ(shown[static_cast<std::size_t>(i)], i);
  }
}

TEST(PictureExchange, ReleasesTheDrawerWhenEitherSideEnds) {
  PictureExchange closed;
  std::thread drawer([&] {
    for (int i = 0; closed.wantsMore(); ++i) {
      closed.add(picture(i), i);
    }
  });
  while (!closed.take()) {
  }
  closed.end();
  drawer.join();

  PictureExchange stopped;
  stopped.endWhen([] { return true; });
  stopped.add(picture(0), 0);
  stopped.finish();  // nobody takes the picture
  EXPECT_FALSE(stopped.wantsMore());
}

}  // namespace

}  // namespace grouptracker
