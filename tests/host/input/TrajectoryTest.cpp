#include "host/input/InputFormats.h"
#include "host/input/ObsmatReader.h"
#include "host/people/PersonCount.h"
#include "host/people/TrackAssembler.h"
#include "tests/support/base/Texts.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

std::string row(double frame, double person, double x, double y) {
  std::ostringstream text;
  text << frame << ' ' << person << ' ' << x << " 0 " << y << " 0 0 0\n";
  return text.str();
}

std::unique_ptr<ObservationTable> table(const std::string& text) {
  std::istringstream in(text);
  return readObsmat(in, "obsmat.txt");
}

std::vector<InputFrame> assemble(const std::string& text, const LinkOptions& options = {}) {
  TrackAssembler assembler(table(text), nullptr, options);
  std::vector<InputFrame> frames;
  for (InputFrame frame; assembler.next(frame);) {
    frames.push_back(frame);
  }
  return frames;
}

TEST(PersonCount, CountsEverybodyOnceInAnyOrder) {
  PersonCount count;
  for (const std::uint32_t id : {5U, 7U, 6U, 6U, 0U, 4294967295U, 5U, 8U, 4294967294U, 0U, 7U}) {
    count.see(id);
  }
  EXPECT_EQ(count.count(), 7U);
  EXPECT_TRUE(count.isWhole());
  for (std::uint32_t id = 10; id < 1'000'000; id += 2) {
    count.see(id);
  }
  EXPECT_FALSE(count.isWhole()) << "memory has a bound";
  EXPECT_NEAR(static_cast<double>(count.count()), PersonCount::mostRanges, 10.0);
}

/// The links of a mobile as (father id, reliability).
std::vector<std::pair<unsigned, double>> linksOf(const MobilePointer& mobile) {
  std::vector<std::pair<unsigned, double>> links;
  for (const auto& link : mobile->getFatherLinks()) {
    links.emplace_back(link->getFather()->getIdent(), link->getReliability());
  }
  return links;
}

TEST(Obsmat, YieldsOneStepPerTimeStepWhateverTheOrderOfLines) {
  // Sorted by person; frames 22 and 52 to 62 are missing, 73 lies off the step of 10.
  const auto steps = table(row(2, 9, 1, 2) + row(12, 9, 1, 3) + row(32, 9, 0, 0) + "\n" +
                           row(2, 4, 5, 6) + row(42, 4, 7, 8) + row(73, 4, 7, 9));
  EXPECT_EQ(steps->totalSteps(), 8U);
  std::vector<std::pair<std::int64_t, std::size_t>> seen;
  ObservationStep step;
  while (steps->next(step)) {
    seen.emplace_back(step.frame, step.observations.size());
    if (step.frame == 2) {
      EXPECT_EQ(step.observations[0].person, 4U);
      EXPECT_EQ(*step.observations[0].position, cv::Point2d(5, 6));
    }
  }
  EXPECT_EQ(seen, (std::vector<std::pair<std::int64_t, std::size_t>>{
                      {2, 2}, {12, 1}, {22, 0}, {32, 1}, {42, 1}, {52, 0}, {62, 0}, {73, 1}}));
}

TEST(Obsmat, SaysInWhichLineItIsWrong) {
  const auto error = [](const std::string& text) { return errorOf([&] { table(text); }); };
  EXPECT_EQ(error(""), "no error");
  EXPECT_EQ(error(row(1, 1, 0, 0) + "1 2 3\n"), "obsmat.txt:2: 8 numbers are expected, not 3");
  EXPECT_EQ(error("1 1 0 0 zero 0 0 0"), "obsmat.txt:1: a number is expected instead of \"zero\"");
  EXPECT_EQ(error(row(1.5, 1, 0, 0)),
            "obsmat.txt:1: the frame must be a whole number from 0 to 1000000000000000");
  EXPECT_EQ(error(row(1, -3, 0, 0)),
            "obsmat.txt:1: the person must be a whole number from 0 to 4294967295");
  EXPECT_EQ(error(row(1, 1, 1e30, 0)), "obsmat.txt:1: the position lies too far away to be metres");
  EXPECT_EQ(error(row(7, 3, 0, 0) + row(8, 3, 0, 0) + row(7, 3, 1, 1)),
            "obsmat.txt:3: person 3 is observed twice at frame 7, first on line 1");
}

TEST(TrackAssembler, MakesActorsOfPersonsWithStandingBodies) {
  LinkOptions options;
  options.chainLength = 30;
  const auto frames = assemble(row(10, 3, 2, 5) + row(20, 3, 3, 5) + row(20, 1, 8, 8), options);
  ASSERT_EQ(frames.size(), 2U);
  EXPECT_EQ(frames[1].number, 20);
  ASSERT_EQ(frames[1].actors.size(), 2);
  EXPECT_EQ(frames[1].actors[0]->getIdent(), 1U);
  const kelDataActor& walker = *frames[1].actors[1];
  EXPECT_EQ(walker.getIdent(), 3U);
  EXPECT_EQ(walker.getLinkedPhysicalObjectList().size(), 2U);
  EXPECT_EQ(walker.getLinkedPhysicalObjectList().front(), frames[0].observed[0]);
  EXPECT_EQ(walker.getBoundingBox3D(), (BoundingBox3D{3.25F, 5.25F, 1.7F, 2.75F, 4.75F, 0}));
  EXPECT_EQ(walker.getCurrentPosition(), cv::Point3f(3, 5, 0));
}

TEST(TrackAssembler, LinksAPersonToItsLatestObservationsLessTheFartherBack) {
  std::string text;
  for (int frame = 0; frame < 7; ++frame) {
    text += row(frame, 1, frame, 0);
  }
  text += row(9, 1, 9, 0);  // two steps missed
  LinkOptions options;
  options.ownLinks = 5;
  const auto frames = assemble(text, options);
  using Links = std::vector<std::pair<unsigned, double>>;
  EXPECT_EQ(linksOf(frames[6].observed[0]),
            (Links{{6, 1.0}, {5, 0.9}, {4, 0.8}, {3, 0.7}, {2, 0.6}}));
  EXPECT_EQ(linksOf(frames[9].observed[0]),
            (Links{{7, 0.8}, {6, 0.7}, {5, 0.6}, {4, 0.5}, {3, 0.4}}));
}

TEST(TrackAssembler, LinksNeighboursOfThePreviousStepWithinTheRadius) {
  LinkOptions options;
  options.neighbourStrength = 0.4;
  options.neighbourRadius = 2.0;
  options.neighbourLinks = 5;
  options.motionDifference = 0.0;
  const std::string first = row(1, 5, 1, 0) + row(1, 2, 0, 0.5) + row(1, 9, 2, 0);
  const auto frames = assemble(first + row(2, 7, 0, 0), options);
  // Ascending persons: 2 (mobile 1) at 0.5 m, 5 (mobile 2) at 1 m, 9 at exactly 2 m not.
  EXPECT_EQ(linksOf(frames[1].observed[0]),
            (std::vector<std::pair<unsigned, double>>{{1, 0.4 * 0.75}, {2, 0.4 * 0.5}}));
  EXPECT_TRUE(
      linksOf(assemble(first + row(2, 8, 9, 0) + row(3, 7, 0, 0)).back().observed[0]).empty())
      << "only the step before counts";
}

TEST(TrackAssembler, LinksTheLowestPersonsOfEquallyCloseNeighbours) {
  LinkOptions options;
  options.neighbourStrength = 1.0;
  options.neighbourRadius = 2.0;
  options.neighbourLinks = 2;
  options.motionDifference = 0.0;
  const auto frames =
      assemble(row(1, 8, 1, 0) + row(1, 3, 0, 1) + row(1, 5, -1, 0) + row(2, 7, 0, 0), options);
  EXPECT_EQ(linksOf(frames[1].observed[0]),
            (std::vector<std::pair<unsigned, double>>{{1, 0.5}, {2, 0.5}}));
}

TEST(TrackAssembler, LinksNeighboursWhoWalkTheSameWay) {
  LinkOptions options;
  options.neighbourStrength = 1.0;
  options.neighbourRadius = 4.0;
  options.motionSteps = 2;
  options.motionDifference = 1.0;
  options.neighbourLinks = 9;
  std::string text;
  for (int frame = 0; frame < 4; ++frame) {
    text += row(frame, 1, frame, 0);           // mobile 1, 7, 13, 19
    text += row(frame, 2, frame, 2);           // beside all the way
    text += row(frame, 3, 1 + frame / 2., 1);  // slower
    text += row(frame, 4, 2 - frame, 0.5);     // comes the other way
    text += row(frame, 5, 2, -1);              // stands
    text += row(frame, 6, 2, -2);              // stands
  }
  const auto frames = assemble(text, options);
  const auto links = linksOf(frames[3].observed[0]);
  ASSERT_EQ(links.size(), 3U) << "one own and two neighbours";
  // At frame 2: 2 m away with the same way; 1 m away with ways of 2 m and 1 m.
  EXPECT_EQ(links[1].first, 14U);
  EXPECT_DOUBLE_EQ(links[1].second, 0.5);
  EXPECT_EQ(links[2].first, 15U);
  EXPECT_DOUBLE_EQ(links[2].second, 0.75 / 3.0);
  EXPECT_EQ(linksOf(frames[3].observed[4]).size(), 1U) << "standing side by side says nothing";
}

TEST(TrackAssembler, LinksCompanionsWhoStandAndNoPasserByWhenTheEvidenceDecides) {
  std::string text;
  for (int frame = 0; frame < 40; ++frame) {
    const double x = std::min(0.4 * frame, 6.0);  // two walk up and stand together
    text += row(frame, 1, x, 0) + row(frame, 2, x, 0.8);
    text += row(frame, 3, 0.4 * frame - 6.0, 1.4);  // comes from behind and passes at frame 30
  }
  const auto linkedPersons = [&text](const LinkOptions& options) {
    std::vector<std::uint32_t> persons;
    for (const auto& [mobile, reliability] : linksOf(assemble(text, options)[30].observed[0])) {
      persons.push_back((mobile - 1) % 3 + 1);
    }
    return persons;
  };
  LinkOptions options;
  EXPECT_EQ(linkedPersons(options), (std::vector<std::uint32_t>{1})) << "they stand";
  options.evidenceStrength = 0.5;
  EXPECT_EQ(linkedPersons(options), (std::vector<std::uint32_t>{1, 2}));
  const auto links = linksOf(assemble(text, options)[30].observed[0]);
  EXPECT_GT(links[1].second, 0.4);
  EXPECT_LE(links[1].second, 0.5);
}

/// Whom the person 1 of an input is linked to in the end, and how surely.
std::vector<std::pair<unsigned, double>> finalLinks(const std::string& file,
                                                    const std::optional<double>& rate) {
  InputOptions options;
  options.rate = rate;
  options.links.evidenceStrength = 1.0;
  const OpenedInput input = openInput(file, options);
  std::vector<std::pair<unsigned, double>> links;
  for (InputFrame frame; input.frames->next(frame);) {
    links = linksOf(frame.observed.front());
    for (auto& [mobile, reliability] : links) {
      mobile = (mobile - 1) % 2 + 1;
    }
  }
  return links;
}

TEST(TrackAssembler, LinksCompanionsAlikeAtAnyRateWhoeverTellsIt) {
  const auto walk = [](int rate, bool hasTimes) {
    std::string text;
    for (int frame = 0; frame < 12 * rate; ++frame) {
      const double time = static_cast<double>(frame) / rate;
      for (int person = 1; person <= 2; ++person) {
        text += fmt::format("{},{},{},{}", frame, person, 1.3 * time, person);
        text += (hasTimes ? fmt::format(",{}", time) : "") + "\n";
      }
    }
    return text;
  };
  const TempFolder folder;
  const std::string head = "frame,id,x,y";
  const auto expected =
      finalLinks(folder.write("slow.csv", head + ",time\n" + walk(10, true)), std::nullopt);
  ASSERT_EQ(expected.size(), 2U) << "to its own last observation and to the companion's";
  const std::string silent = folder.write("fast.csv", head + "\n" + walk(50, false));
  const std::string telling = folder.write("told.csv", head + ",time\n" + walk(50, true));
  for (const auto& links : {finalLinks(silent, 50.0), finalLinks(telling, std::nullopt)}) {
    ASSERT_EQ(links.size(), 2U);
    EXPECT_EQ(links[1].first, 2U);
    EXPECT_NEAR(links[1].second, expected[1].second, 0.01);
  }
}

TEST(TrackAssembler, ListsTheLastObservationsAndForgetsThoseLongGone) {
  LinkOptions options;
  options.chainLength = 3;
  options.ownLinks = 1;
  options.motionSteps = 1;
  std::string text;
  for (int frame = 0; frame < 12; ++frame) {
    text += row(frame, 2, 50, frame);
    text += frame < 5 || frame > 8 ? row(frame, 1, 0, frame) : "";
  }
  const auto frames = assemble(text, options);
  const auto lengthOf = [&](std::size_t frame) {
    return frames[frame].actors[0]->getLinkedPhysicalObjectList().size();
  };
  EXPECT_EQ(lengthOf(4), 3U);
  EXPECT_EQ(lengthOf(9), 1U);
  EXPECT_EQ(lengthOf(10), 2U);
}

}  // namespace

}  // namespace grouptracker
