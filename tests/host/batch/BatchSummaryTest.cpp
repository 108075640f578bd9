#include "host/batch/BatchSummary.h"
#include "tests/support/base/Texts.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace grouptracker {

namespace {

using testing::HasSubstr;
using testing::Not;

RecordingResult resultWith(std::uint64_t frames, double score) {
  RecordingResult result;
  result.isDone = true;
  result.frames = frames;
  result.people = 3;
  result.groups = 1;
  result.events = 2;
  result.scores = {score, score, score};
  result.seconds = 1.5;
  result.megabytes = static_cast<double>(frames);
  result.outputs = {{"report.html", 1, 1, ""}};
  return result;
}

TEST(BatchSummary, HasARowForEachRecordingAndOneForAll) {
  TempFolder folder;
  BatchSummary summary(folder.path());
  summary.add("north & south", resultWith(10, 1.0));
  summary.add("a,b", resultWith(20, 0.5));
  RecordingResult failure;
  failure.message = "in.csv:3: \"x\" is no number";
  failure.seconds = 0.25;
  summary.add("east", failure);
  summary.add("west", std::nullopt);
  const BatchTotals totals = summary.finish();
  EXPECT_EQ(totals.text(), "2 done, 1 failed, 1 open");
  EXPECT_EQ(
      textOf(folder.path() / "summary.csv"),
      "name,state,frames,people,groups,events,windowed,whole,pairs,seconds,megabytes,message\n"
      "north & south,done,10,3,1,2,1.000,1.000,1.000,1.50,10.0,\n"
      "\"a,b\",done,20,3,1,2,0.500,0.500,0.500,1.50,20.0,\n"
      "east,failed,0,0,0,0,,,,0.25,0.0,\"in.csv:3: \"\"x\"\" is no number\"\n"
      "west,open,0,0,0,0,,,,0.00,0.0,\n"
      "all,\"2 done, 1 failed, 1 open\",30,6,2,4,0.750,0.750,0.750,3.25,20.0,\n");
  const std::string page = textOf(folder.path() / "index.html");
  EXPECT_THAT(page, HasSubstr("<a href=\"recordings/north%20%26%20south/report.html\">"
                              "north &amp; south</a>"));
  EXPECT_THAT(page, HasSubstr("<h2>Failed</h2>"));
}

TEST(BatchSummary, DividesManyRowsIntoPagesAndNamesWhatFailedOnTheFirst) {
  TempFolder folder;
  BatchSummary summary(folder.path());
  for (int i = 0; i < 2001; ++i) {
    summary.add(fmt::format("r{}", i), resultWith(1, 1.0));
  }
  RecordingResult failure;
  failure.message = "lost";
  summary.add("last", failure);
  summary.finish();
  const std::string first = textOf(folder.path() / "index.html");
  EXPECT_THAT(first, HasSubstr(">r999<"));
  EXPECT_THAT(first, Not(HasSubstr(">r1000<")));
  EXPECT_THAT(first, HasSubstr("lost"));
  EXPECT_THAT(first, HasSubstr("<a href=\"index-3.html\">3</a>"));
  EXPECT_THAT(textOf(folder.path() / "index-2.html"), HasSubstr(">r1999<"));
  EXPECT_THAT(textOf(folder.path() / "index-3.html"), HasSubstr(">r2000<"));
}

}  // namespace

}  // namespace grouptracker
