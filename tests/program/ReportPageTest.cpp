#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace grouptracker {

namespace {

using testing::HasSubstr;

TEST(ReportCommand, MakesOneFileThatNeedsNothingElse) {
  const TempFolder folder;
  folder.write("p.txt", sampleParameters());
  folder.write("scene.jsonl", walkingScene(12));
  Program(folder.path())
      .run({"run", "scene.jsonl", "--parameters", "p.txt", "--actors", "g.jsonl", "--diagnostics",
            "lines.txt", "--mobile-dump", "none"});
  Program making(folder.path());
  EXPECT_EQ(making.run({"report", "scene.jsonl", "g.jsonl", "--output", "r.html", "--diagnostics",
                        "lines.txt"}),
            0);
  const std::string page = textOf(folder.path() / "r.html");
  EXPECT_THAT(page, testing::ContainsRegex(
                        "frame [0-9]+ .decided 2 frames later.: founded by the pair of person 1"));
  EXPECT_THAT(page, HasSubstr("[\"temporalWinSize:\",\"2\"]")) << "the parameters of the run";
  EXPECT_THAT(page, testing::Not(testing::ContainsRegex("(src|href)=\"https?:")));
  EXPECT_THAT(page, testing::EndsWith("</html>\n"));

  folder.write("g.jsonl", textOf(folder.path() / "g.jsonl") + R"({"frame": 13, "rep)");
  Program cut(folder.path());
  EXPECT_EQ(cut.run({"report", "scene.jsonl", "g.jsonl", "--output", "r.html"}), 2);
  EXPECT_EQ(cut.errors(), "g.jsonl:13: not valid JSON\n");
  folder.write("g.jsonl", R"({"frame": 3, "reportedFrame": 1, "inputFrame": 99, )"
                          R"("persons": [], "groups": []})");
  Program foreign(folder.path());
  EXPECT_EQ(foreign.run({"report", "scene.jsonl", "g.jsonl", "--output", "r.html"}), 2);
  EXPECT_EQ(foreign.errors(), "g.jsonl:1: frame 99 is not in scene.jsonl\n");
  EXPECT_EQ(textOf(folder.path() / "r.html"), page) << "the older report is kept";
}

}  // namespace

}  // namespace grouptracker
