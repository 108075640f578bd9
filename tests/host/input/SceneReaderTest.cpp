#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/MobileStore.h"
#include "host/input/SceneReader.h"
#include "host/people/ActorMaker.h"
#include "tests/support/base/Texts.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace grouptracker {

namespace {

const std::string box = R"("box2d": [10, 20, 30, 40])";
const std::string body =
    box + R"(, "box3d": [0.25, 0.25, 1.7, -0.25, -0.25, 0], "position": [0.1, 0, 0])";

/// A mobile with everything that it needs, and more if wished.
std::string mobile(const std::string& id, const std::string& more = "") {
  return R"({"id": )" + id + R"(, "type": "PERSON", )" + body + more + "}";
}

std::string father(const std::string& id, const std::string& reliability = "0.9") {
  return R"(, "fathers": [{"id": )" + id + R"(, "reliability": )" + reliability + "}]";
}

std::string line(const std::string& mobiles, const std::string& actors = "") {
  return R"({"mobiles": [)" + mobiles + R"(], "actors": [)" + actors + "]}\n";
}

std::vector<InputFrame> readAll(const std::string& text, std::size_t window = 128,
                                const SceneReader::Calibration& calibration = {}) {
  std::istringstream in(text);
  SceneReader reader(in, "s.jsonl", "scenes", calibration, window);
  std::vector<InputFrame> frames;
  for (InputFrame frame; reader.next(frame);) {
    frames.push_back(frame);
  }
  return frames;
}

TEST(SceneReader, BuildsMobilesActorsAndLinks) {
  const auto frames = readAll(
      line(mobile("1"), R"({"id": 7, "mobiles": [1]})") + "\n" +
      R"({"image": "a.png", "mobiles": [)" + mobile("4294967295", father("1", "0.75")) +
      R"(], "weather": {}, "actors": [{"id": 7, "mobiles": [1, 4294967295], "type": "CAT"},)" +
      R"({"mobiles": [], "id": 8, "box3d": [1, 2, 3, 4, 5, 0.1]}]})");
  ASSERT_EQ(frames.size(), 2U);
  EXPECT_EQ(frames[0].number, 1);
  EXPECT_EQ(frames[0].actors[0]->getType(), "PERSON");
  EXPECT_EQ(frames[0].actors[0]->getBoundingBox3D().b2, 1.7F);

  EXPECT_EQ(frames[1].number, 2);
  EXPECT_EQ(frames[1].place.text(), "s.jsonl:3");
  EXPECT_EQ(frames[1].imageFile, "scenes/a.png");
  const auto& object = *frames[1].observed[0]->getPhysicalObject();
  EXPECT_EQ(object.getBoundingBox2D(), cv::Rect(10, 20, 30, 40));
  EXPECT_EQ(object.getPosition(), cv::Point3f(0.1F, 0, 0));
  const auto& link = *frames[1].observed[0]->getFatherLinks().front();
  EXPECT_EQ(link.getFather(), frames[0].observed[0]);
  EXPECT_EQ(link.getReliability(), 0.75);
  EXPECT_EQ(frames[1].actors[0]->getType(), "CAT");
  EXPECT_EQ(frames[1].actors[0]->getLinkedPhysicalObjectList().front(), frames[0].observed[0]);
  EXPECT_EQ(frames[1].actors[1]->getType(), "UNKNOWN");
  EXPECT_EQ(frames[1].actors[1]->getBoundingBox3D(), (BoundingBox3D{1, 2, 3, 4, 5, 0.1F}));
}

// What is left out is not looked at: it may name what was never there.
TEST(SceneReader, ReadsPlacesWithoutLinksAndEarlierMobiles) {
  std::istringstream in(line(mobile("1"), R"({"id": 7, "mobiles": [1]})") +
                        line(mobile("2", father("90")) + "," + mobile("3"),
                             R"({"id": 7, "mobiles": [80, 1, 2]}, {"id": 8, "mobiles": []})") +
                        line(mobile("4"), R"({"id": 7, "mobiles": [2]})"));
  SceneReader reader(in, "s.jsonl", "", {});
  reader.readPlacesOnly();
  InputFrame frame;
  ASSERT_TRUE(reader.next(frame) && reader.next(frame));
  EXPECT_TRUE(frame.fathers.empty());
  EXPECT_TRUE(frame.observed[0]->getFatherLinks().empty());
  ASSERT_EQ(frame.actors[0]->getLinkedPhysicalObjectList().size(), 1);
  EXPECT_EQ(frame.actors[0]->getLinkedPhysicalObjectList().front(), frame.observed[0]);
  EXPECT_EQ(frame.actors[0]->getCurrentPosition(), cv::Point3f(0.1F, 0, 0));
  EXPECT_TRUE(frame.actors[1]->getLinkedPhysicalObjectList().empty());
  EXPECT_THROW(reader.next(frame), InputError) << "the current mobile is of an earlier frame";
}

TEST(SceneReader, TakesTheNumbersAndTimesOfTheInputItself) {
  const auto numbered = [](const std::string& numbers) {
    return "{" + numbers + R"("mobiles": [], "actors": []})" + "\n";
  };
  const auto frames = readAll(numbered(R"("frame": -4, "time": 0.5, )") + numbered("") +
                              numbered(R"("frame": 780, "time": 62, )"));
  EXPECT_EQ(frames[0].number, -4);
  EXPECT_EQ(frames[0].time, 0.5);
  EXPECT_EQ(frames[1].number, 2) << "without a number of its own a frame has that of its line";
  EXPECT_FALSE(frames[1].time);
  EXPECT_EQ(frames[2].number, 780);
  EXPECT_EQ(errorOf([&] { readAll(numbered(R"("frame": 5, )") + numbered("")); }),
            "s.jsonl:2: the frame is number 2, the one before it number 5; numbers must grow");
  EXPECT_EQ(errorOf([&] {
              readAll(numbered(R"("time": 5, )") + numbered("") + numbered(R"("time": 5, )"));
            }),
            "s.jsonl:3: the time is not later than that of a frame before");
  EXPECT_EQ(errorOf([&] { readAll(numbered(R"("frame": 1.5, )")); }),
            "s.jsonl:1: frame must be an integer from -9223372036854775808 to 9223372036854775807");
}

/// The numbers of the frames of a stream that survives losses, "x" for a line that is wrong.
std::string framesOfStream(const std::string& text) {
  std::istringstream in(text);
  SceneReader reader(in, "s.jsonl", "scenes", {});
  reader.surviveLosses();
  reader.limitPeople(2);
  std::string all;
  for (bool isThere = true; isThere;) {
    try {
      InputFrame frame;
      isThere = reader.next(frame);
      all += isThere ? std::to_string(frame.number) + " " : "";
    } catch (const InputError&) {
      all += "x ";
    }
  }
  return all;
}

TEST(SceneReader, SurvivesLostLinesAndASenderThatStartsAnew) {
  const auto numbered = [](int from, int to, double start) {
    std::string lines;
    for (int number = from; number < to; ++number) {
      lines += R"({"frame": )" + std::to_string(number) + R"(, "time": )" +
               std::to_string(start + 0.1 * number) + R"(, "mobiles": [)" +
               mobile(std::to_string(number), father(std::to_string(number - 1))) +
               R"(], "actors": [{"id": 7, "mobiles": [)" + std::to_string(number - 1) + ", " +
               std::to_string(number) + "]}]}\n";
    }
    return lines;
  };
  EXPECT_EQ(framesOfStream(numbered(50, 53, 0) + "damaged\n" + numbered(54, 56, 0)),
            "50 51 52 x 54 55 ");
  EXPECT_EQ(framesOfStream(numbered(50, 52, 0) + numbered(1, 8, 99)), "50 51 x x x x 5 6 7 ");
  EXPECT_EQ(framesOfStream(numbered(50, 52, 99) + numbered(60, 67, 0)), "50 51 x x x x 64 65 66 ");
  EXPECT_EQ(framesOfStream(numbered(50, 60, 0) + numbered(52, 62, 0)),
            "50 51 52 53 54 55 56 57 58 59 x x x x x x x x 60 61 ")
      << "what is repeated is no new beginning";
  EXPECT_EQ(framesOfStream(line("", R"({"id": 1, "mobiles": [5]})") +
                           line("", R"({"id": 1, "mobiles": []}, {"id": 2, "mobiles": []}, )"
                                    R"({"id": 3, "mobiles": []})") +
                           line("")),
            "x x 3 ");
}

TEST(SceneReader, AnIdDeclaredAgainNamesItsLatestObservation) {
  const auto frames = readAll(line(mobile("1")) + line(mobile("1", father("1"))) +
                              line(mobile("2"), R"({"id": 7, "mobiles": [1, 2]})"));
  // The link of the second declaration leads to the first one, which stays as it was.
  EXPECT_EQ(frames[1].observed[0]->getFathers().front(), frames[0].observed[0]);
  EXPECT_EQ(frames[2].actors[0]->getLinkedPhysicalObjectList().front(), frames[1].observed[0]);
}

TEST(SceneReader, FindsMobilesAgainThatItKeepsOnDiskOnly) {
  std::string text = line(R"({"id": 1, "type": "A TYPE NAME TOO LONG FOR ONE SLOT OF THE FILE", )" +
                          body + "}" + "," + mobile("3"));
  text += line(mobile("2")) + line("") + line(mobile("3"));
  text += line(mobile("5", father("1")), R"({"id": 7, "mobiles": [2, 1, 3, 5]})");
  const auto frame = readAll(text, 2).back();
  EXPECT_EQ(frame.observed[0]->getFathers().front()->getIdent(), 1U);
  const auto& chain = frame.actors[0]->getLinkedPhysicalObjectList();
  const auto& oldest = *(*std::next(chain.begin()))->getPhysicalObject();
  EXPECT_EQ(oldest.getType(), "A TYPE NAME TOO LONG FOR ONE SLOT OF THE FILE");
  EXPECT_EQ(oldest.getBoundingBox3D(), (BoundingBox3D{0.25F, 0.25F, 1.7F, -0.25F, -0.25F, 0}));
  EXPECT_EQ((*std::next(chain.begin(), 2))->getPhysicalObject()->getBoundingBox2D().width, 30)
      << "declared again within the window, so still there as a whole";
  EXPECT_EQ(errorOf([&] { readAll(text + line(mobile("6", father("4"))), 2); }),
            "s.jsonl:6: a father link of mobile 6 names the mobile 4, which was not declared "
            "before");
}

/// The actors of a frame with what their mobiles look like.
std::string actorsOf(const InputFrame& frame) {
  std::string actors;
  for (const auto& actor : frame.actors) {
    actors += " " + std::to_string(actor->getIdent()) + actor->getType() + ":";
    for (const auto& mobile : actor->getLinkedPhysicalObjectList()) {
      actors += " " + std::to_string(mobile->getIdent()) + mobile->getPhysicalObject()->getType();
    }
  }
  return actors + "\n";
}

/// The actors from frame to frame, with what is wrong in between; `plannedFrom` is the number of
/// frames after which somebody else makes them.
std::string listsOf(const std::string& text, int plannedFrom = -1) {
  std::istringstream in(text);
  SceneReader reader(in, "s.jsonl", "scenes", {}, 4);
  ActorMaker maker;
  std::string lists;
  InputFrame frame;
  for (bool isThere = true; isThere;) {
    if (plannedFrom-- == 0) {
      reader.planActors();
    }
    const std::string error = errorOf([&] { isThere = reader.next(frame); });
    if (error != "no error") {
      lists += error + "\n";
    } else if (isThere) {
      maker.make(frame);
      lists += actorsOf(frame);
    }
  }
  return lists;
}

// A key that no line has makes a document of it, of which every list is read whole.
TEST(SceneReader, GetsTheSameListsWhereTheyContinueThoseOfTheLineBefore) {
  const auto seen = [](const std::string& id, const std::string& list, const std::string& more) {
    const auto kind = R"({"id": )" + id + R"(, "type": "KIND)" + id + R"(", )" + body + "}";
    return R"({"mobiles": [)" + kind + R"(], "actors": [{"id": 7, "mobiles": )" + list + "}" +
           more + "]}\n";
  };
  const std::string begun = seen("1", "[1]", "") + seen("2", "[1, 2]", "") +
                            seen("3", "[1, 2, 3]", "") + seen("4", "[2, 3, 4]", "");
  for (const std::string& end :
       {seen("5", "[3, 4, 5]", "") + seen("6", "[4,5,6]", "") + seen("61", "[5,6,61]", ""),
        seen("5", "[ 2, 3, 4 ,  5 ]", "") + seen("6", "[3, 4 ,  5, 6 ]", ""),
        seen("5", "[3, 4, 5]", "") + seen("5", "[4, 5, 5]", "") + seen("8", "[5, 5, 8]", ""),
        seen("3", "[3, 4, 3]", "") + seen("9", "[4, 3, 9]", ""),
        seen("5", "[3, 4, 5]", R"(, {"id": 8, "mobiles": [4, 5]})") +
            seen("6", "[3, 4, 5, 6]", R"(, {"id": 8, "mobiles": [5, 6]})"),
        seen("5", "[1, 2, 3, 4, 5]", "") + seen("6", "[1, 2, 3, 4, 5, 6]", "") +
            seen("7", "[1, 2, 3, 4, 5, 6, 7]", ""),
        seen("5", "[5]", "") + seen("6", "[6]", "") + seen("7", "[]", "") + seen("8", "[8]", ""),
        seen("5", "[2, 3, 45]", ""),
        seen("5", "[3, 4, 05]", ""),
        seen("5", "[3, 4, 5.0]", ""),
        seen("5", "[3, 4, 4294967301]", ""),
        seen("5", "[3, 4, 5,]", ""),
        seen("5", "[3, 4 5]", ""),
        seen("5", "[3, 4, -5]", ""),
        seen("5", "[3, 4, 5}", ""),
        seen("5", "[3, 4, 5, 5]", ""),
        seen("5", "[3, 4, 5]", "]"),
        seen("5", "[3, 4, 5]", "") + "{",
        seen("5", "[3, 4, 5", "") + seen("6", "[3, 4, 6]", "") + seen("8", "[3, 4, 6, 8]", ""),
        seen("5", "[3, 4, 90]", "") + seen("6", "[4, 90, 6]", "") + seen("8", "[4, 6, 8]", ""),
        seen("5", R"([3, 4, 5], "id": 8)", "") + seen("6", R"([4, 5, 6], "id": 8)", "") +
            seen("9", "[4, 5, 6, 9]", ""),
        seen("5", "[3, 4, 5]", R"(, {"id": 8, "mobiles": [4, 5]}], "actors": [)") +
            seen("6", "[4, 5, 6]", R"(, {"id": 8, "mobiles": [4, 5, 6]})"),
        seen("5", R"([3, 4, 5], "mobiles": [5])", "") + seen("6", "[5, 6]", "")}) {
    std::string asDocuments = begun + end;
    for (std::size_t at = 0; (at = asDocuments.find("{\"mobiles", at)) != std::string::npos; ++at) {
      asDocuments.insert(at + 1, R"("by": "hand", )");
    }
    const std::string expected = listsOf(asDocuments);
    EXPECT_EQ(listsOf(begun + end), expected) << end;
    EXPECT_EQ(listsOf(begun + end, 0), expected) << end;
    EXPECT_EQ(listsOf(begun + end, 3), expected) << end;
  }
}

TEST(SceneReader, ReadsNumbersAsADocumentDoes) {
  for (const char* const number : {"-0", "-0.0", "1e-400", "9223372036854775807",
                                   "18446744073709551616", "0.1e1", "1.5E+3", "01", "1."}) {
    const auto wide = [number](const char* more) {
      return std::string("{") + more + R"("mobiles": [{"id": 1, "type": "\u0041", )" + box +
             R"(, "box3d": [1, 2, 3, 4, 5, )" + number + R"(], "position": [0, 0, 0]}], )" +
             R"("actors": []})";
    };
    const auto read = [&wide](const char* more) {
      std::string seen;
      const std::string error = errorOf([&] {
        const auto frames = readAll(wide(more));
        const auto& object = *frames[0].observed[0]->getPhysicalObject();
        seen = object.getType() + std::to_string(object.getBoundingBox3D().b5);
      });
      return seen + error;
    };
    EXPECT_EQ(read(""), read(R"("by": "hand", )")) << number;
  }
}

TEST(MobileArchive, FindsWhatItHoldsInMemoryAndWhatItHasWritten) {
  constexpr std::uint32_t count = 300;
  MobileArchive archive(7);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t id = i * 37 % count;  // every id, neighbours far apart
    archive.store(id, {std::string(id % 5, 'x'), {static_cast<float>(id), 0, 0, 0, 0, 1}});
  }
  archive.store(5, {"again", {}});
  for (std::uint32_t id = 0; id < count; ++id) {
    const BoundingBox3D seen{static_cast<float>(id), 0, 0, 0, 0, 1};
    EXPECT_EQ(archive.load(id), id == 5 ? (ArchivedMobile{"again", {}})
                                        : (ArchivedMobile{std::string(id % 5, 'x'), seen}));
  }
}

TEST(MobileArchive, KeepsEveryIdApart) {
  MobileArchive archive;
  EXPECT_FALSE(archive.load(0));
  for (const std::uint32_t id : {0U, 1U, 77777U, 4294967295U}) {
    archive.store(id, {"TYPE" + std::to_string(id), {static_cast<float>(id), 0, 0, 0, 0, 0}});
  }
  archive.store(1, {std::string(1000, 'x'), {}});
  archive.store(2, {std::string(29, 'y'), {}});
  EXPECT_EQ(archive.load(4294967295U)->type, "TYPE4294967295");
  EXPECT_EQ(archive.load(77777)->box3D.b0, 77777.0F);
  EXPECT_EQ(archive.load(1)->type, std::string(1000, 'x'));
  EXPECT_EQ(archive.load(2)->type, std::string(29, 'y'));
  EXPECT_FALSE(archive.load(3));
  archive.keepLatest(2);
  archive.store(8, {"", {}});
  archive.store(9, {"", {}});
  EXPECT_TRUE(archive.load(1)) << "among the latest four";
  archive.store(10, {"", {}});
  EXPECT_TRUE(archive.load(8) && archive.load(9) && archive.load(10));
  EXPECT_FALSE(archive.load(1));
  EXPECT_FALSE(archive.load(4294967294U));
}

TEST(MobileStore, KeepsWholeWhatWasDeclaredAgainWithinItsWindow) {
  const auto seen = [](std::uint32_t id, int column) {
    return MobilePointer::create(
        id, QSharedPointer<kelDataPhysicalObject>::create("PERSON", cv::Rect(column, 0, 1, 1),
                                                          BoundingBox3D(), cv::Point3f()));
  };
  MobileStore store(2);
  const auto again = seen(5, 20);
  store.beginFrame();
  store.declare(seen(5, 10));
  store.declare(seen(6, 10));
  store.beginFrame();
  store.declare(again);
  store.beginFrame();  // the first frame goes to the archive
  EXPECT_EQ(store.find(5), again);
  EXPECT_TRUE(store.find(6)->getPhysicalObject()->getBoundingBox2D().empty());
}

TEST(SceneReader, DerivesWhatIsLeftOutFromTheCalibration) {
  // One pixel is a centimetre; the camera hangs 10 m high, 10 m in front of the person's feet.
  const auto calibration = QSharedPointer<GroundPlaneCalibration>::create(
      cv::Matx33d::diag({0.01, 0.01, 1}), cv::Point3d(3, 14, 10));
  const std::string bare = R"({"id": 1, "type": "PERSON", "box2d": [280, 300, 40, 100]})";
  EXPECT_EQ(errorOf([&] { readAll(line(bare)); }),
            "s.jsonl:1: mobile 1: \"box3d\" is missing and there is no calibration to derive it");
  const auto object = *readAll(line(bare), 128, calibration)[0].observed[0]->getPhysicalObject();
  EXPECT_EQ(object.getPosition(), cv::Point3f(3, 4, 0));
  EXPECT_NEAR(object.getBoundingBox3D().b0, 3.2, 1e-6);
  EXPECT_NEAR(object.getBoundingBox3D().b4, 3.8, 1e-6);
  EXPECT_NEAR(object.getBoundingBox3D().b2, 10.0 * (1.0 - 10.0 / 11.0), 1e-6);
}

struct WrongLine {
  std::string text;
  std::string error;
};

class WrongScene : public testing::TestWithParam<WrongLine> {};

TEST_P(WrongScene, IsRefusedWithTheReason) {
  EXPECT_EQ(errorOf([] { readAll(line(mobile("1")) + GetParam().text); }),
            "s.jsonl:2: " + GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    AllErrors, WrongScene,
    testing::Values(
        WrongLine{R"({"mobiles": [)", "not valid JSON"},
        WrongLine{"[]", "the line must be an object"},
        WrongLine{R"({"mobiles": [], "actors": []} 3)", "not valid JSON"},
        WrongLine{R"({"mobiles": []})", "\"actors\" is missing"},
        WrongLine{R"({"actors": []})", "\"mobiles\" is missing"},
        WrongLine{R"({"image": 3, "mobiles": [], "actors": []})", "image must be a string"},
        WrongLine{R"({"mobiles": {}, "actors": []})", "mobiles must be an array"},
        WrongLine{line("3"), "mobiles[0]: a mobile must be an object"},
        WrongLine{line(mobile("2") + "," + R"({"id": 3, )" + body + "}"),
                  "mobiles[1]: \"type\" is missing"},
        WrongLine{line(R"({"id": 3, "type": "PERSON"})"), "mobiles[0]: \"box2d\" is missing"},
        WrongLine{line(mobile("4294967296")),
                  "mobiles[0]: id must be an integer from 0 to 4294967295"},
        WrongLine{line(mobile("-1")), "mobiles[0]: id must be an integer from 0 to 4294967295"},
        WrongLine{line(mobile("2.0")), "mobiles[0]: id must be an integer from 0 to 4294967295"},
        WrongLine{line(mobile("2", R"(, "box2d": [1, 2, -3, 4])")),
                  "mobiles[0]: box2d has a negative width or height"},
        WrongLine{line(mobile("2", R"(, "box2d": [2147483647, 2, 1, 4])")),
                  "mobiles[0]: box2d ends beyond the largest integer"},
        WrongLine{line(mobile("2", R"(, "box2d": [1, 2, 3])")),
                  "mobiles[0]: box2d must be an array of 4 integers"},
        WrongLine{line(mobile("2", R"(, "box2d": [1, 2, 3, 4.5])")),
                  "mobiles[0]: box2d must be an integer from -2147483648 to 2147483647"},
        WrongLine{line(mobile("2", R"(, "position": [1, "2", 3])")),
                  "mobiles[0]: position must be a number"},
        WrongLine{line(mobile("2", R"(, "position": [1, 1e39, 3])")),
                  "mobiles[0]: position is a number that does not fit"},
        WrongLine{line(mobile("2", R"(, "position": [1, NaN, 3])")), "not valid JSON"},
        WrongLine{line(mobile("2", father("1", "1e999"))),
                  "not valid JSON: a number that does not fit"},
        WrongLine{line(mobile("2", R"(, "fathers": [{"id": 1}])")),
                  "mobiles[0]: fathers[0]: \"reliability\" is missing"},
        WrongLine{line(mobile("2", father("2"))),
                  "a father link of mobile 2 names the mobile 2, which was not declared before"},
        WrongLine{line(mobile("1") + "," + mobile("1")),
                  "mobile 1 is declared twice in this frame"},
        WrongLine{line("", R"({"id": 7, "mobiles": [9]})"),
                  "actor 7 names the mobile 9, which was not declared before"},
        WrongLine{line(mobile("2"), R"({"id": 7, "mobiles": [2, 1]})"),
                  "the last mobile of actor 7, 1, is not of this frame"},
        WrongLine{line(mobile("2"), R"({"id": 7, "mobiles": [2]}, {"id": 7, "mobiles": []})"),
                  "actor 7 stands twice in this frame"},
        WrongLine{line("", R"({"id": 7})"), "actors[0]: \"mobiles\" is missing"},
        WrongLine{line("", R"({"mobiles": []})"), "actors[0]: \"id\" is missing"}));

}  // namespace

}  // namespace grouptracker
