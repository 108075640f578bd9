#include "host/base/PersonNames.h"
#include "host/report/ReportPage.h"
#include "tests/support/base/Images.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>

#include <cstring>

namespace grouptracker {

namespace {

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

  std::string nameOf(std::uint32_t person) const {
    return m_head["names"].value(std::to_string(person), "");
  }

 private:
  static std::string between(const QByteArray& page, const char* start) {
    const int at = page.indexOf(start) + static_cast<int>(std::strlen(start));
    return page.mid(at, page.indexOf("</script>", at) - at).toStdString();
  }
  std::vector<std::int64_t> read(const nlohmann::json& array) const {
    const std::string type = array["type"];
    const int size = type == "u8" ? 1 : type == "i16" ? 2 : type == "f64" ? 8 : 4;
    std::vector<std::int64_t> numbers;
    for (int i = 0; i < array["length"].get<int>(); ++i) {
      const char* at = m_bytes.constData() + array["offset"].get<int>() + i * size;
      std::int32_t wide = 0;
      std::int16_t narrow = 0;
      double real = 0.0;
      std::memcpy(&real, at, size == 8 ? 8 : 1);
      std::memcpy(&wide, at, size == 4 ? 4 : 1);
      std::memcpy(&narrow, at, size == 2 ? 2 : 1);
      numbers.push_back(size == 8 ? static_cast<std::int64_t>(real) : size == 2 ? narrow : wide);
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

ReportTitle titled(const std::string& groups) {
  ReportTitle title;
  title.input = "in";
  title.groups = groups;
  return title;
}

using Numbers = std::vector<std::int64_t>;

TEST(ReportData, StoresWaysAsRunsAndMembersAsSpans) {
  ReportData data;
  data.addFrame(780, {at(7, {1.0F, -2.0F})});
  data.addFrame(786, {at(7, {1.5F, -2.01F}), at(8, {0.0F, 0.0F})});
  data.addFrame(792, {at(8, {1000.0F, 0.0F})});  // too far for a step
  data.addFrame(5'000'000'798, {at(7, {3.0F, 3.0F})});
  EXPECT_TRUE(data.addGroups(groupsAt(780, 4, {7, 8})));
  EXPECT_TRUE(data.addGroups(groupsAt(786, 4, {7})));
  EXPECT_TRUE(data.addGroups(groupsAt(5'000'000'798, 4, {7})));
  EXPECT_FALSE(data.addGroups(groupsAt(781, 4, {7})));
  const PageNumbers page(makeReportPage(titled("</script>"), data, ImageStrip(), {}));
  EXPECT_EQ(page["frameNumbers"], (Numbers{780, 786, 792, 5'000'000'798}));
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

TEST(ReportData, NamesPeopleAsTheInputDoes) {
  const std::uint32_t guest = PersonNames::ofProgram().numberOf("guest </script>");
  ReportData data;
  data.addFrame(1, {at(7, {1.0F, -2.0F}), at(guest, {1.5F, -2.0F})});
  const PageNumbers page(makeReportPage(titled("groups"), data, ImageStrip(), {}));
  EXPECT_EQ(page["runPerson"], (Numbers{7, static_cast<std::int32_t>(guest)}));
  EXPECT_EQ(page.nameOf(guest), "guest </script>");
  EXPECT_EQ(page.nameOf(7), "");
}

TEST(ReportData, LeavesOutWhatIsLongInAGap) {
  constexpr std::int64_t last = 5000;
  ReportData data;
  data.addFrame(1, {at(7, {1.0F, 0.0F})});
  for (std::int64_t frame = 2; frame < last; ++frame) {
    EXPECT_EQ(data.addFrame(frame, {}), frame - 1 <= ReportData::longestGap);
  }
  data.addFrame(last, {at(7, {1.0F, 0.0F})});
  EXPECT_EQ(data.frames(), ReportData::longestGap + 2);
  RunStep ended = groupsAt(4321, 4, {});
  ended.events.push_back({});
  EXPECT_TRUE(data.addGroups(ended));
  EXPECT_FALSE(data.addGroups(groupsAt(last + 1, 4, {7})));
  const PageNumbers page(makeReportPage(titled("g"), data, ImageStrip(), {}));
  EXPECT_EQ(page["eventFrame"], (Numbers{ReportData::longestGap}));
  EXPECT_EQ(page["frameNumbers"].back(), last);
}

TEST(ReportData, TellsWhatIsTrueAndWhatIsNotKnown) {
  ReportData data;
  for (const std::int64_t frame : {10, 20, 30, 40}) {
    data.addFrame(frame, {at(7, {1.0F, 0.0F}), at(8, {2.0F, 0.0F}), at(9, {3.0F, 0.0F})});
  }
  for (const std::int64_t frame : {10, 20, 30}) {
    EXPECT_TRUE(data.addGroups(groupsAt(frame, 4, {7, 8})));
  }
  EXPECT_TRUE(data.addTruth(10, {{1, {7, 8}}}, true));
  EXPECT_TRUE(data.addTruth(30, {{1, {7, 8, 9}}}, false));
  EXPECT_FALSE(data.addTruth(35, {}, true));
  const PageNumbers page(makeReportPage(titled("g"), data, ImageStrip(), {}));
  EXPECT_EQ(page["isDecided"], (Numbers{1, 1, 1, 0})) << "the run ended before the last";
  EXPECT_EQ(page["verdicts"], (Numbers{1, 0, 2, 0})) << "of frame 20 the truth tells nothing";
  EXPECT_EQ(page["truthPerson"], (Numbers{7, 8, 7, 8, 9}));
  EXPECT_EQ(page["truthFrom"], (Numbers{0, 0, 2, 2, 2}));
  EXPECT_EQ(page["truthTo"], (Numbers{0, 0, 2, 2, 2}));
  EXPECT_EQ(page["groupId"], (Numbers{4}));
  EXPECT_EQ(page["groupLane"], (Numbers{0}));
}

TEST(ImageStrip, FitsIntoSomeMegabytesAndKeepsTheBoxesInPlace) {
  constexpr int count = 8;
  ImageStrip strip(300'000);
  cv::Mat noise(960, 960, CV_8UC3);  // nothing is harder to make small
  cv::randu(noise, 0, 255);
  for (int i = 0; i < count; ++i) {
    InputFrame frame;
    frame.image = QSharedPointer<kelDataImage>::create(noise);
    strip.addFrame(frame, {{5, Sighting{{}, {96, 48, 480, 240}}}});
  }
  ReportBody body;
  const ImageStrip::Images images = strip.load(body);
  ASSERT_EQ(images.files.size(), count);
  int bytes = 0;
  for (const QByteArray& file : images.files) {
    bytes += file.size();
  }
  EXPECT_LE(bytes, 300'000);
  EXPECT_GT(bytes, 150'000) << "no smaller than it has to be";
  const QByteArray jpeg = QByteArray::fromBase64(images.files.front());
  const cv::Mat first = ImageCodec::loaded().decode(std::vector<uchar>(jpeg.begin(), jpeg.end()));
  EXPECT_EQ(first.cols, images.width);
  EXPECT_LT(images.width, 480);

  ReportData data;
  const PageNumbers page(makeReportPage(titled("g"), data, strip, {}));
  EXPECT_EQ(page["boxX"].front(), images.width / 10);
  EXPECT_EQ(page["boxWidth"].front(), images.width / 2);
}

}  // namespace

}  // namespace grouptracker
