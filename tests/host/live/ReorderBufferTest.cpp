#include "host/live/ReorderBuffer.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace grouptracker {

namespace {

constexpr double patience = 0.5;  // seconds

PeopleMessage numbered(std::int64_t frame, double x = 0.0) {
  PeopleMessage message;
  message.frame = frame;
  message.people = {{1, cv::Point2d(x, 0.0), {}}};
  return message;
}

PeopleMessage timed(double time, double x = 0.0) {
  PeopleMessage message;
  message.time = time;
  message.people = {{1, cv::Point2d(x, 0.0), {}}};
  return message;
}

/// A buffer and the clock of whoever fills it.
class Reordering : public testing::Test {
 protected:
  /// Lets a message arrive; says what comes out at once.
  std::string add(const PeopleMessage& message) {
    buffer.add(message, now);
    return out();
  }
  std::string wait(double seconds) {
    now += std::chrono::milliseconds(std::lround(1000.0 * seconds));
    buffer.expire(now);
    return out();
  }
  std::string end() {
    buffer.finish();
    return out();
  }
  /// Five messages, all of which come out.
  void begin(std::int64_t first = 1) {
    for (std::int64_t frame = first; frame < first + 5; ++frame) {
      add(numbered(frame, static_cast<double>(frame)));
    }
    wait(patience);
  }
  /// The frames, or times in brackets, of what comes out; in round ones what is without people.
  std::string out() {
    std::string all;
    for (ObservationStep step; buffer.next(step);) {
      const std::string name =
          step.time ? fmt::format("[{:g}]", *step.time) : fmt::format("{}", step.frame);
      all += (all.empty() ? "" : " ") + (step.observations.empty() ? "(" + name + ")" : name);
    }
    return all;
  }
  ReorderBuffer::Counts counts() const { return buffer.counts(); }

  ReorderBuffer buffer{patience};
  ReorderBuffer::Clock::time_point now;
};

TEST_F(Reordering, HandsOutAtOnceWhatFollowsAndWaitsForWhatIsMissing) {
  EXPECT_EQ(add(numbered(1)), "") << "an earlier one may follow";
  EXPECT_EQ(add(numbered(2)), "");
  EXPECT_EQ(wait(patience), "1 2");
  EXPECT_EQ(add(numbered(3)), "3");
  EXPECT_EQ(add(numbered(5)), "");
  EXPECT_EQ(add(numbered(6)), "");
  EXPECT_EQ(add(numbered(4)), "4 5 6");
  EXPECT_EQ(add(numbered(7)), "7");
  EXPECT_EQ(counts().late + counts().duplicates + counts().missing + counts().restarts, 0U);
}

TEST_F(Reordering, MakesAGapFramesWithoutPeopleAndDropsWhatComesTooLate) {
  begin();
  EXPECT_EQ(add(numbered(8)), "");
  EXPECT_EQ(wait(patience - 0.1), "");
  EXPECT_EQ(wait(0.1), "(6) (7) 8");
  EXPECT_EQ(add(numbered(7)), "");
  EXPECT_EQ(add(numbered(9)), "9");
  EXPECT_EQ(counts().missing, 2U);
  EXPECT_EQ(counts().late, 1U);
  EXPECT_EQ(add(numbered(5000)), "");
  EXPECT_EQ(end(), "5000") << "a pause is no gap to be filled";
}

TEST_F(Reordering, GivesMissingFramesTheTimesBetween) {
  for (const double time : {10.0, 10.25, 10.5, 10.75, 11.0}) {
    add(timed(time));
  }
  EXPECT_EQ(wait(patience), "[10.75] [11]");
  EXPECT_EQ(add(timed(11.25)), "[11.25]");
  EXPECT_EQ(add(timed(12.0)), "");
  EXPECT_EQ(add(timed(12.6)), "([11.5]) ([11.75]) [12]") << "waited for by the times of messages";
}

TEST_F(Reordering, DropsWhatASenderRepeatsAfterALostConnection) {
  begin();
  for (std::int64_t frame = 1; frame <= 5; ++frame) {
    EXPECT_EQ(add(numbered(frame, static_cast<double>(frame))), "");
  }
  EXPECT_EQ(add(numbered(6)), "6");
  EXPECT_EQ(add(numbered(8)), "");
  EXPECT_EQ(add(numbered(8)), "");
  EXPECT_EQ(counts().duplicates, 6U);
  EXPECT_EQ(counts().restarts, 0U);
}

TEST_F(Reordering, BeginsAnewWithASenderThatDoes) {
  begin(100);
  for (std::int64_t frame = 1; frame <= 4; ++frame) {
    EXPECT_EQ(add(numbered(frame, 50.0)), "") << "they could only be late";
  }
  EXPECT_EQ(add(numbered(5, 50.0)), "1 2 3 4 5");
  EXPECT_EQ(add(numbered(6, 50.0)), "6");
  EXPECT_EQ(counts().restarts, 1U);
  EXPECT_EQ(counts().late, 0U);
}

TEST_F(Reordering, SurvivesAClockThatJumpsAheadAndBack) {
  double time = 1000.0;
  std::string all;
  const auto run = [&](double from) {
    for (time = from; time < from + 2.0; time += 0.25) {
      all += add(timed(time));
      wait(0.25);
    }
    all += out();
  };
  run(1000.0);
  run(90000.0);
  EXPECT_EQ(counts().missing, 0U);
  all.clear();
  run(1002.0);
  EXPECT_EQ(counts().restarts, 1U);
  EXPECT_TRUE(all.ends_with("[1003.75]")) << all;
  EXPECT_EQ(counts().late, 0U);
}

TEST_F(Reordering, TakesManyLateMessagesForNoNewBeginning) {
  const auto at = [](int frame) {
    PeopleMessage message = numbered(frame, frame);
    message.time = 100.0 + 0.25 * frame;
    return message;
  };
  for (int frame = 1; frame <= 5; ++frame) {
    add(at(frame));
  }
  add(at(14));
  wait(patience);
  for (int frame = 6; frame <= 13; ++frame) {
    EXPECT_EQ(add(at(frame)), "");
  }
  EXPECT_EQ(add(at(15)), "[103.75]");
  EXPECT_EQ(counts().late, 8U);
  EXPECT_EQ(counts().restarts, 0U);
  std::string anew;
  for (int frame = 1; frame <= 5; ++frame) {
    PeopleMessage message = at(frame);
    message.time = 110.0 + 0.25 * frame;
    anew += add(message);
  }
  EXPECT_EQ(anew, "[110.25] [110.5] [110.75] [111] [111.25]");
  EXPECT_EQ(counts().restarts, 1U);
}

TEST_F(Reordering, LetsOneMessageOfAWrongClockPassByItself) {
  for (int i = 0; i < 8; ++i) {
    add(timed(1000.0 + 0.25 * i));
  }
  EXPECT_EQ(add(timed(99999.0)), "");
  EXPECT_EQ(add(timed(1002.0)), "[1002]");
  EXPECT_EQ(wait(patience), "[99999]");
  std::string all;
  for (int i = 1; i <= 5; ++i) {
    all += add(timed(1002.0 + 0.25 * i));
  }
  EXPECT_EQ(all, "[1002.25] [1002.5] [1002.75] [1003] [1003.25]");
}

TEST_F(Reordering, DropsWhatLacksTheNumberOfTheOthersUntilNobodyHasOne) {
  begin();
  EXPECT_EQ(add(timed(1.0)), "");
  EXPECT_EQ(add(numbered(6)), "6");
  std::string all;
  for (int i = 0; i < 8; ++i) {
    all += add(timed(10.0 + i));
  }
  EXPECT_EQ(all + wait(patience), "[14][15][16][17]");
  EXPECT_EQ(counts().late, 5U);
  EXPECT_EQ(counts().restarts, 1U);
  EXPECT_EQ(add(timed(17.0)), "");
  EXPECT_EQ(counts().duplicates, 1U);
}

TEST_F(Reordering, CountsWhatIsOrderedByTimesWhateverNumbersSomeHave) {
  for (int i = 0; i < 6; ++i) {
    PeopleMessage message = timed(100.0 + 0.25 * i);
    message.frame = i % 3 == 0 ? std::nullopt : std::optional<std::int64_t>(100 + i);
    buffer.add(message, now);
  }
  buffer.finish();
  std::int64_t count = 0;
  for (ObservationStep step; buffer.next(step);) {
    EXPECT_EQ(step.frame, ++count);
  }
  EXPECT_EQ(count, 6);
}

TEST_F(Reordering, NumbersWhatHasNeitherNumberNorTime) {
  PeopleMessage plain;
  plain.people = {{1, cv::Point2d(), {}}};
  EXPECT_EQ(add(plain), "1");
  EXPECT_EQ(add(plain), "2");
}

}  // namespace

}  // namespace grouptracker
