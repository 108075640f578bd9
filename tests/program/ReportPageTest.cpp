#include "host/report/ReportPage.h"
#include "tests/support/base/TempFolder.h"
#include "tests/support/host/SampleParameters.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstring>

namespace grouptracker {

namespace {

using testing::HasSubstr;

/// The numbers of a page by name, as a browser reads them.
class PageNumbers {
 public:
  explicit PageNumbers(const QByteArray& page) {
    m_head = nlohmann::json::parse(between(page, "id=\"head\" type=\"application/json\">"));
    const QByteArray packed =
        QByteArray::fromBase64(QByteArray::fromStdString(between(page, "type=\"text/plain\">")));
    // Qt wants the expected length in front; any guess will do.
    m_bytes = qUncompress(QByteArray("\0\0\1\0", 4) + packed);
  }

  std::vector<std::int64_t> operator[](const std::string& name) const {
    for (const auto& array : m_head["arrays"]) {
      if (array["name"] == name) {
        return read(array);
      }
    }
    return {-999};
  }

 private:
  static std::string between(const QByteArray& page, const char* start) {
    const int at = page.indexOf(start) + static_cast<int>(std::strlen(start));
    return page.mid(at, page.indexOf("</script>", at) - at).toStdString();
  }
  std::vector<std::int64_t> read(const nlohmann::json& array) const {
    const std::string type = array["type"];
    const int size = type == "u8" ? 1 : type == "i16" ? 2 : 4;
    std::vector<std::int64_t> numbers;
    for (int i = 0; i < array["length"].get<int>(); ++i) {
      const char* at = m_bytes.constData() + array["offset"].get<int>() + i * size;
      std::int32_t wide = 0;
      std::int16_t narrow = 0;
      std::memcpy(&wide, at, size == 4 ? 4 : 1);
      std::memcpy(&narrow, at, size == 2 ? 2 : 1);
      numbers.push_back(size == 2 ? narrow : wide);
    }
    return numbers;
  }

  nlohmann::json m_head;
  QByteArray m_bytes;
};

RunPerson at(std::uint32_t person, const cv::Point2f& ground) {
  return {person, Sighting{ground, {}}};
}

RunStep groupsAt(std::int64_t inputFrame, std::uint32_t group,
                 const std::vector<std::uint32_t>& persons) {
  RunStep frame;
  frame.inputFrame = inputFrame;
  RunGroup state;
  state.id = group;
  state.isVisible = true;
  for (const std::uint32_t person : persons) {
    state.members.push_back({person, person, std::nullopt});
  }
  frame.groups.push_back(state);
  return frame;
}

TEST(ReportData, StoresWaysAsRunsAndMembersAsSpans) {
  ReportData data;
  data.addFrame(780, {at(7, {1.0F, -2.0F})});
  data.addFrame(786, {at(7, {1.5F, -2.01F}), at(8, {0.0F, 0.0F})});
  data.addFrame(792, {at(8, {1000.0F, 0.0F})});  // too far for a step
  data.addFrame(798, {at(7, {3.0F, 3.0F})});
  EXPECT_TRUE(data.addGroups(groupsAt(780, 4, {7, 8})));
  EXPECT_TRUE(data.addGroups(groupsAt(786, 4, {7})));
  EXPECT_TRUE(data.addGroups(groupsAt(798, 4, {7})));
  EXPECT_FALSE(data.addGroups(groupsAt(781, 4, {7})));
  const PageNumbers page(makeReportPage({"in", "</script>", 0.0}, data, ImageStrip(), {}));
  using Numbers = std::vector<std::int64_t>;
  EXPECT_EQ(page["frameNumbers"], (Numbers{780, 786, 792, 798}));
  EXPECT_EQ(page["runPerson"], (Numbers{8, 7, 8, 7}));
  EXPECT_EQ(page["runStart"], (Numbers{1, 0, 2, 3}));
  EXPECT_EQ(page["runLength"], (Numbers{1, 2, 1, 1}));
  EXPECT_EQ(page["runX"], (Numbers{0, 100, 100000, 300}));
  EXPECT_EQ(page["stepX"], (Numbers{0, 0, 50, 0, 0}));
  EXPECT_EQ(page["stepY"], (Numbers{0, 0, -1, 0, 0}));
  EXPECT_EQ(page["memberPerson"], (Numbers{7, 7, 8}));
  EXPECT_EQ(page["memberFrom"], (Numbers{0, 3, 0}));
  EXPECT_EQ(page["memberTo"], (Numbers{1, 3, 0}));
}

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
