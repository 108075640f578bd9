#include "host/live/PeopleMessage.h"

#include "host/base/JsonAccess.h"

#include <QDateTime>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <utility>

namespace grouptracker {

struct PeopleMessageParser::Json {
  explicit Json(std::size_t nesting) {
    constexpr std::size_t usualMessage = std::size_t{16} * 1024;  // bytes; grows on demand
    if (parser.allocate(usualMessage, nesting) != simdjson::SUCCESS) {
      throw std::bad_alloc();
    }
  }

  simdjson::dom::parser parser;
};

namespace {

using json::Value;

constexpr double latestTime = 1e11;  // seconds; the year 5000

/// The value at a pointer; none when it is missing or null.
std::optional<Value> at(Value root, const std::string& pointer) {
  Value value;
  if (root.at_pointer(pointer).get(value) != simdjson::SUCCESS || value.is_null()) {
    return std::nullopt;
  }
  return value;
}

double isoTime(const std::string& text) {
  constexpr int lengthOfDate = 10;  // characters, which hold '-' themselves
  QString moment = QString::fromStdString(text);
  const QString clock = moment.mid(lengthOfDate);
  const bool saysZone =
      clock.endsWith('Z', Qt::CaseInsensitive) || clock.contains('+') || clock.contains('-');
  moment += saysZone ? "" : "Z";
  const QDateTime time = QDateTime::fromString(moment, Qt::ISODateWithMs);
  if (clock.isEmpty() || !time.isValid()) {
    throw ValueProblem("time is no moment in ISO 8601");
  }
  constexpr double perSecond = 1000.0;
  return static_cast<double>(time.toMSecsSinceEpoch()) / perSecond;
}

double timeIn(Value value, double secondsPerUnit) {
  const double time = value.is_string() ? isoTime(json::asText(value, "time"))
                                        : json::as<double>(value, "time") * secondsPerUnit;
  if (std::abs(time) > latestTime) {
    throw ValueProblem("time lies too far away; is it in milliseconds (\"timeUnit\" of a map)?");
  }
  return time;
}

std::int64_t frameIn(Value value) {
  const auto frame = json::as<std::int64_t>(value, "frame");
  if (std::abs(static_cast<double>(frame)) > largestFrame) {
    throw ValueProblem("frame is out of all range");
  }
  return frame;
}

std::optional<cv::Point2d> positionIn(Value person, const MessageMap& map) {
  const auto x = at(person, map.x);
  const auto y = at(person, map.y);
  if (!x && !y) {
    return std::nullopt;
  }
  if (!x || !y) {
    throw ValueProblem("x and y belong together");
  }
  const cv::Point2d position(json::as<double>(*x, "x"), json::as<double>(*y, "y"));
  expectMetres(position);
  return position;
}

std::optional<cv::Rect2d> boxIn(Value person, const MessageMap& map) {
  std::array<double, 4> numbers{};
  if (map.box.size() == 1) {
    const auto all = at(person, map.box.front());
    if (!all) {
      return std::nullopt;
    }
    numbers = json::asNumbers<double, 4>(*all, "box");
  } else {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      const auto number = at(person, map.box[i]);
      if (!number) {
        return std::nullopt;
      }
      numbers[i] = json::as<double>(*number, "box");
    }
  }
  const cv::Rect2d box(numbers[0], numbers[1], numbers[2], numbers[3]);
  expectPixels(box);
  return box;
}

/// The id within the limit of its length.
std::uint32_t idIn(Value person, const MessageMap& map, std::size_t longest) {
  const auto id = at(person, map.id);
  if (!id) {
    throw ValueProblem("the id is missing");
  }
  std::string_view text;
  if (id->get(text) == simdjson::SUCCESS && (text.empty() || text.size() > longest)) {
    throw ValueProblem(fmt::format("the id must have 1 to {} bytes", longest));
  }
  return json::asPerson(*id, "the id");
}

void sortPeople(std::vector<Observation>& people) {
  std::sort(people.begin(), people.end(),
            [](const Observation& a, const Observation& b) { return a.person < b.person; });
  const auto twice = std::adjacent_find(
      people.begin(), people.end(),
      [](const Observation& a, const Observation& b) { return a.person == b.person; });
  if (twice != people.end()) {
    throw ValueProblem("person " + PersonNames::ofProgram().textOf(twice->person) +
                       " stands twice in one message");
  }
}

}  // namespace

PeopleMessageParser::PeopleMessageParser(MessageMap map, bool hasCamera,
                                         const MessageLimits& limits)
    : m_map(std::move(map)),
      m_hasCamera(hasCamera),
      m_limits(limits),
      m_json(std::make_unique<Json>(limits.nesting)) {}

PeopleMessageParser::~PeopleMessageParser() = default;

PeopleMessage PeopleMessageParser::parse(const std::string& text) {
  if (text.size() > m_limits.bytes) {
    throw ValueProblem(fmt::format("the message is longer than {} bytes", m_limits.bytes));
  }
  const Value root = json::parse(m_json->parser, text);
  json::asObject(root, "the message");
  PeopleMessage message;
  if (const auto frame = at(root, m_map.frame)) {
    message.frame = frameIn(*frame);
  }
  if (const auto time = at(root, m_map.time)) {
    message.time = timeIn(*time, m_map.secondsPerUnit);
  }
  const auto people = at(root, m_map.people);
  if (!people) {
    throw ValueProblem("the people are missing (\"" + m_map.people + "\")");
  }
  simdjson::dom::array all;
  if (people->get(all) == simdjson::SUCCESS && all.size() > m_limits.people) {
    throw ValueProblem(tooMany(m_limits.people));
  }
  const auto read = [this](Value value) {
    json::asObject(value, "it");
    Observation seen{idIn(value, m_map, m_limits.idBytes), positionIn(value, m_map),
                     boxIn(value, m_map)};
    if (!seen.position && !(seen.box2D && m_hasCamera)) {
      throw ValueProblem(seen.box2D ? "there is a box only, for which --calibration is needed"
                                    : "neither x and y nor a box is there");
    }
    return seen;
  };
  json::readArray(*people, "people", read, message.people);
  sortPeople(message.people);
  return message;
}

std::string tooMany(std::size_t people) {
  return fmt::format("there are more than {} people at one moment (--max-people)", people);
}

bool isPeopleMessage(const std::string& text, const MessageMap& map) {
  simdjson::dom::parser parser;
  Value root;
  return parser.parse(text).get(root) == simdjson::SUCCESS && root.is_object() &&
         at(root, map.people).has_value();
}

}  // namespace grouptracker
