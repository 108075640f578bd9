#include "host/live/MessageMap.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/JsonAccess.h"

#include <iterator>
#include <map>

namespace grouptracker {

namespace {

constexpr std::size_t largestMap = 64 * 1024;  // bytes
constexpr std::size_t boxNumbers = 4;

std::string pointer(json::Value value, const char* name) {
  std::string text = json::asText(value, name);
  if (!text.empty() && text.front() != '/') {
    throw ValueProblem(std::string(name) + " must be a JSON pointer such as \"/people\", not \"" +
                       text + "\"");
  }
  return text;
}

std::vector<std::string> boxPointers(json::Value value) {
  if (!value.is_array()) {
    return {pointer(value, "box")};
  }
  std::vector<std::string> pointers;
  json::readArray(
      value, "box", [](json::Value item) { return pointer(item, "a pointer"); }, pointers);
  if (pointers.size() != boxNumbers) {
    throw ValueProblem("box must be one pointer, or four: left, top, width and height");
  }
  return pointers;
}

double unitOf(const std::string& name) {
  static const std::map<std::string, double> units{
      {"s", 1.0}, {"ms", 1e-3}, {"us", 1e-6}, {"ns", 1e-9}};
  const auto unit = units.find(name);
  if (unit == units.end()) {
    throw ValueProblem("timeUnit must be s, ms, us or ns, not \"" + name + "\"");
  }
  return unit->second;
}

MessageMap parse(const std::string& text) {
  MessageMap map;
  const std::map<std::string, std::string*, std::less<>> places{
      {"time", &map.time}, {"frame", &map.frame}, {"people", &map.people},
      {"id", &map.id},     {"x", &map.x},         {"y", &map.y}};
  simdjson::dom::parser parser;
  for (const auto field : json::asObject(json::parse(parser, text), "the map")) {
    const std::string key(field.key);
    if (const auto place = places.find(key); place != places.end()) {
      *place->second = pointer(field.value, key.c_str());
    } else if (key == "box") {
      map.box = boxPointers(field.value);
    } else if (key == "timeUnit") {
      map.secondsPerUnit = unitOf(json::asText(field.value, "timeUnit"));
    } else {
      throw ValueProblem("\"" + key +
                         "\" is not one of time, frame, people, id, x, y, box, timeUnit");
    }
  }
  return map;
}

}  // namespace

MessageMap MessageMap::read(std::istream& in, const std::string& name) {
  std::string text;
  for (std::istreambuf_iterator<char> byte(in), end; byte != end; ++byte) {
    if (text.size() == largestMap) {
      throw InputError(name, "too large for a map of messages");
    }
    text += *byte;
  }
  try {
    return parse(text);
  } catch (const ValueProblem& problem) {
    throw InputError(name, 1, problem.what());
  }
}

MessageMap MessageMap::read(const std::string& path) {
  InputFile file(path);
  return read(file.stream(), path);
}

}  // namespace grouptracker
