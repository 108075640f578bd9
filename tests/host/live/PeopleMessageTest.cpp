#include "host/base/PersonNames.h"
#include "host/live/PeopleMessage.h"
#include "tests/support/base/Texts.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <optional>
#include <sstream>
#include <string>

namespace grouptracker {

namespace {

using testing::HasSubstr;

MessageMap mapOf(const std::string& text) {
  std::istringstream in(text);
  return MessageMap::read(in, "map.json");
}

/// Everything that a message says, in one line.
std::string said(const std::string& text, const MessageMap& map = {}, bool hasCamera = false) {
  PeopleMessageParser parser(map, hasCamera);
  const PeopleMessage message = parser.parse(text);
  std::string all = message.frame ? fmt::format("frame {}", *message.frame) : "";
  all += message.time ? fmt::format(" time {}", *message.time) : "";
  for (const Observation& seen : message.people) {
    all += "; " + json_line::person(seen.person);
    all += seen.position ? fmt::format(" at {} {}", seen.position->x, seen.position->y) : "";
    all += seen.box2D ? fmt::format(" in {} {} {} {}", seen.box2D->x, seen.box2D->y,
                                    seen.box2D->width, seen.box2D->height)
                      : "";
  }
  return all;
}

std::string wrong(const std::string& text, const MessageMap& map = {}) {
  return errorOf([&] { said(text, map); });
}

TEST(PeopleMessage, TellsMomentAndPeopleUnderWhateverNames) {
  EXPECT_EQ(said(R"({"time": 1763720000.125, "frame": 17, "people": [
                   {"id": "a7f0", "x": 1.25, "y": 3.5, "box": [1, 2, 3, 4.5]},
                   {"id": 3, "x": 1, "y": 2, "speed": 7}]})"),
            R"(frame 17 time 1763720000.125; 3 at 1 2; "a7f0" at 1.25 3.5 in 1 2 3 4.5)");
  EXPECT_EQ(said(R"({"people": [{"id": -5, "x": 0, "y": 0}, {"id": 18000000000, "x": 0, "y": 0},
                                {"id": "5", "x": 0, "y": 0}], "frame": null})"),
            R"(; -5 at 0 0; 18000000000 at 0 0; "5" at 0 0)");
  EXPECT_EQ(said(R"({"people": [{"id": 1, "box": [1, 2, 3, 4]}]})", {}, true), "; 1 in 1 2 3 4");
}

/// The program is somewhere else than at Greenwich for the length of a scope.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
  }
  ~TimeZone() {
    m_before ? ::setenv("TZ", m_before->c_str(), 1) : ::unsetenv("TZ");
    ::tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> m_before =
      std::getenv("TZ") != nullptr ? std::optional<std::string>(std::getenv("TZ")) : std::nullopt;
};

TEST(PeopleMessage, TellsTimesOfNoZoneByThatOfGreenwich) {
  const TimeZone elsewhere("EST5");
  const auto timeOf = [](const std::string& time) {
    return said(R"({"time": ")" + time + R"(", "people": []})");
  };
  for (const char* const same :
       {"2025-11-21T09:13:20", "2025-11-21 09:13:20", "2025-11-21T09:13:20Z",
        "2025-11-21T09:13:20z", "2025-11-21 10:13:20+01:00", "2025-11-21T04:13:20-05:00"}) {
    EXPECT_EQ(timeOf(same), " time 1763716400") << same;
  }
  EXPECT_EQ(timeOf("2025-11-21T10:13:20.5+01:00"), " time 1763716400.5");
  for (const char* const none : {"noon", "2025-11-21", "2025-11-21T", "09:13:20", ""}) {
    EXPECT_EQ(errorOf([&] { timeOf(none); }), "time is no moment in ISO 8601") << none;
  }
}

TEST(PeopleMessage, SaysWhatIsWrong) {
  EXPECT_EQ(wrong("[1]"), "the message must be an object");
  EXPECT_EQ(wrong("{"), "not valid JSON");
  EXPECT_EQ(wrong(R"({"frame": 1})"), "the people are missing (\"/people\")");
  EXPECT_EQ(wrong(R"({"people": [{"x": 1, "y": 2}]})"), "people[0]: the id is missing");
  EXPECT_EQ(wrong(R"({"people": [{"id": 1.5, "x": 1, "y": 2}]})"),
            "people[0]: the id must be a whole number or a text");
  EXPECT_EQ(wrong(R"({"people": [{"id": "", "x": 1, "y": 2}]})"),
            "people[0]: the id must have 1 to 256 bytes");
  EXPECT_EQ(wrong(R"({"people": [{"id": "a", "x": 1}]})"), "people[0]: x and y belong together");
  EXPECT_EQ(wrong(R"({"people": [{"id": 1, "box": [1, 2, 3, 4]}]})"),
            "people[0]: there is a box only, for which --calibration is needed");
  EXPECT_EQ(wrong(R"({"people": [{"id": "a", "x": 1, "y": 2}, {"id": "a", "x": 1, "y": 2}]})"),
            "person a stands twice in one message");
  EXPECT_THAT(wrong(R"({"time": 1763720000123, "people": []})"), HasSubstr("in milliseconds"));
}

TEST(PeopleMessage, HasBounds) {
  const std::string deep = std::string(40, '[') + std::string(40, ']');
  EXPECT_EQ(wrong(R"({"people": [], "more": )" + deep + "}"), "the JSON is nested too deeply");
  EXPECT_EQ(wrong(R"({"people": [], "more": ")" + std::string(1 << 20, 'x') + "\"}"),
            "the message is longer than 1048576 bytes");
  std::string many = R"({"people": [{"id": 0, "x": 0, "y": 0})";
  for (int i = 1; i <= 1000; ++i) {
    many += fmt::format(R"(,{{"id":{},"x":0,"y":0}})", i);
  }
  EXPECT_EQ(wrong(many + "]}"), "there are more than 1000 people at one moment (--max-people)");
  EXPECT_EQ(said(R"({"frame": 1, "people": []})"), "frame 1") << "none of these harms the next";
}

TEST(MessageMap, FindsThePeopleOfOtherSenders) {
  const MessageMap map = mapOf(R"({"time": "/header/stamp", "timeUnit": "ns", "frame": "/seq",
      "people": "/objects", "id": "/uuid", "x": "/translation/0", "y": "/translation/1",
      "box": ["/left", "/top", "/size/0", "/size/1"]})");
  EXPECT_EQ(said(R"({"header": {"stamp": 1763720000500000000}, "seq": 4, "objects": [
                   {"uuid": "a/b", "translation": [1, 2, 0], "left": 5, "top": 6, "size": [7, 8]},
                   {"uuid": 9, "translation": [3, 4, 0]}]})",
                 map),
            R"(frame 4 time 1763720000.5; 9 at 3 4; "a/b" at 1 2 in 5 6 7 8)");
  EXPECT_EQ(wrong(R"({"people": []})", map), "the people are missing (\"/objects\")");
}

TEST(MessageMap, SaysWhatIsWrong) {
  const auto error = [](const std::string& text) { return errorOf([&] { mapOf(text); }); };
  EXPECT_EQ(error("{"), "map.json:1: not valid JSON");
  EXPECT_EQ(error(R"({"people": "objects"})"),
            "map.json:1: people must be a JSON pointer such as \"/people\", not \"objects\"");
  EXPECT_EQ(error(R"({"persons": "/objects"})"),
            "map.json:1: \"persons\" is not one of time, frame, people, id, x, y, box, timeUnit");
  EXPECT_EQ(error(R"({"timeUnit": "h"})"),
            "map.json:1: timeUnit must be s, ms, us or ns, not \"h\"");
  EXPECT_EQ(error(R"({"box": ["/a", "/b"]})"),
            "map.json:1: box must be one pointer, or four: left, top, width and height");
}

}  // namespace

}  // namespace grouptracker
