#include "host/base/OutputPlace.h"
#include "host/pictures/BackgroundTarget.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace grouptracker {

namespace {

/// What reaches a target, noted without a lock: whoever looks at it while pictures still come would
/// be a data race.
struct Noted {
  std::vector<int> pictures;
  bool isFinished = false;
};

/// Slower than who draws; fails at one picture.
class NotingTarget : public PictureTarget {
 public:
  NotingTarget(Noted& noted, int failsAt) : m_noted(noted), m_failsAt(failsAt) {}
  void add(const cv::Mat& picture, std::int64_t number) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (number == m_failsAt) {
      throw OutputError("disk", "is full");
    }
    m_noted.pictures.push_back(picture.at<int>(0));
  }
  void finish() override { m_noted.isFinished = true; }

 private:
  Noted& m_noted;
  int m_failsAt;
};

constexpr int count = 40;

/// Draws; returns how often it was told of a failure.
int drawAll(PictureTarget& target) {
  int failures = 0;
  for (int i = 0; i < count; ++i) {
    try {
      target.add(cv::Mat(1, 1, CV_32S, cv::Scalar(i)), i);
    } catch (const OutputError&) {
      ++failures;
    }
  }
  return failures;
}

TEST(BackgroundTarget, HandsOverAllPicturesInOrderAndThenFinishes) {
  Noted noted;
  BackgroundTarget target(std::make_unique<NotingTarget>(noted, count));
  EXPECT_EQ(drawAll(target), 0);
  target.finish();
  ASSERT_EQ(noted.pictures.size(), std::size_t{count});
  for (int i = 0; i < count; ++i) {
    EXPECT_EQ(noted.pictures[static_cast<std::size_t>(i)], i);
  }
  EXPECT_TRUE(noted.isFinished);
}

TEST(BackgroundTarget, TellsAFailureOnceAndFinishesAllTheSame) {
  Noted early;
  BackgroundTarget failing(std::make_unique<NotingTarget>(early, 2));
  EXPECT_EQ(drawAll(failing), 1);
  EXPECT_NO_THROW(failing.finish());
  EXPECT_EQ(early.pictures.size(), 2U);
  EXPECT_TRUE(early.isFinished);

  Noted late;
  BackgroundTarget ending(std::make_unique<NotingTarget>(late, count - 1));
  EXPECT_EQ(drawAll(ending), 0);
  EXPECT_THROW(ending.finish(), OutputError);
  EXPECT_TRUE(late.isFinished);
}

}  // namespace

}  // namespace grouptracker
