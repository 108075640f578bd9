#include "host/input/SceneLineParser.h"

#include "host/base/JsonAccess.h"

#include <cstddef>
#include <limits>
#include <utility>

namespace grouptracker {

struct SceneLineParser::Buffers {
  simdjson::dom::parser json;
};

SceneLineParser::SceneLineParser(ScenePart part)
    : m_buffers(std::make_unique<Buffers>()), m_part(part) {}
SceneLineParser::~SceneLineParser() = default;
SceneLineParser::SceneLineParser(SceneLineParser&&) noexcept = default;
SceneLineParser& SceneLineParser::operator=(SceneLineParser&&) noexcept = default;

namespace {

using json::Value;

cv::Rect readBox2D(Value value) {
  const auto box = json::asNumbers<int, 4>(value, "box2d");
  const auto [x, y, width, height] = box;
  if (width < 0 || height < 0) {
    throw json::problem("box2d has a negative width or height");
  }
  if (x > std::numeric_limits<int>::max() - width || y > std::numeric_limits<int>::max() - height) {
    throw json::problem("box2d ends beyond the largest integer");
  }
  return {x, y, width, height};
}

BoundingBox3D readBox3D(Value value) {
  const auto b = json::asNumbers<float, 6>(value, "box3d");
  return {b[0], b[1], b[2], b[3], b[4], b[5]};
}

cv::Point3f readPosition(Value value) {
  const auto p = json::asNumbers<float, 3>(value, "position");
  return {p[0], p[1], p[2]};
}

SceneFather readFather(Value value) {
  std::optional<std::uint32_t> id;
  std::optional<double> reliability;
  for (const auto field : json::asObject(value, "a father")) {
    if (field.key == "id") {
      id = json::as<std::uint32_t>(field.value, "id");
    } else if (field.key == "reliability") {
      reliability = json::as<double>(field.value, "reliability");
    }
  }
  return {json::required(id, "id"), json::required(reliability, "reliability")};
}

SceneMobile readMobile(Value value, ScenePart part) {
  SceneMobile mobile;
  std::optional<std::uint32_t> id;
  std::optional<std::string> type;
  std::optional<cv::Rect> box2D;
  for (const auto field : json::asObject(value, "a mobile")) {
    if (field.key == "id") {
      id = json::as<std::uint32_t>(field.value, "id");
    } else if (field.key == "type") {
      type = json::asText(field.value, "type");
    } else if (field.key == "box2d") {
      box2D = readBox2D(field.value);
    } else if (field.key == "box3d") {
      mobile.box3D = readBox3D(field.value);
    } else if (field.key == "position") {
      mobile.position = readPosition(field.value);
    } else if (field.key == "fathers" && part == ScenePart::whole) {
      json::readArray(field.value, "fathers", readFather, mobile.fathers);
    }
  }
  mobile.id = json::required(id, "id");
  mobile.type = json::required(type, "type");
  mobile.box2D = json::required(box2D, "box2d");
  return mobile;
}

std::uint32_t readId(Value value) {
  return json::as<std::uint32_t>(value, "an id");
}

/// The last id of an array, alone; none of an empty one.
void readLastId(Value value, std::vector<std::uint32_t>& ids) {
  simdjson::dom::array values;
  if (value.get(values) != simdjson::SUCCESS) {
    throw json::problem("mobiles must be an array");
  }
  std::optional<Value> last;
  for (const Value item : values) {
    last = item;
  }
  if (last) {
    ids.push_back(readId(*last));
  }
}

SceneActor readActor(Value value, ScenePart part) {
  SceneActor actor;
  std::optional<std::uint32_t> id;
  std::optional<std::vector<std::uint32_t>> mobiles;
  for (const auto field : json::asObject(value, "an actor")) {
    if (field.key == "id") {
      id = json::as<std::uint32_t>(field.value, "id");
    } else if (field.key == "type") {
      actor.type = json::asText(field.value, "type");
    } else if (field.key == "box3d") {
      actor.box3D = readBox3D(field.value);
    } else if (field.key == "mobiles") {
      part == ScenePart::whole ? json::readArray(field.value, "mobiles", readId, mobiles.emplace())
                               : readLastId(field.value, mobiles.emplace());
    }
  }
  actor.id = json::required(id, "id");
  actor.mobiles = json::required(mobiles, "mobiles");
  return actor;
}

}  // namespace

void SceneLineParser::parse(const std::string& line, SceneLine& scene) {
  scene = SceneLine();
  bool hasMobiles = false;
  bool hasActors = false;
  for (const auto field : json::asObject(json::parse(m_buffers->json, line), "the line")) {
    if (field.key == "frame") {
      scene.frame = json::as<std::int64_t>(field.value, "frame");
    } else if (field.key == "time") {
      scene.time = json::as<double>(field.value, "time");
    } else if (field.key == "image") {
      scene.image = json::asText(field.value, "image");
    } else if (field.key == "mobiles") {
      hasMobiles = true;
      json::readArray(
          field.value, "mobiles", [this](Value item) { return readMobile(item, m_part); },
          scene.mobiles);
    } else if (field.key == "actors") {
      hasActors = true;
      json::readArray(
          field.value, "actors", [this](Value item) { return readActor(item, m_part); },
          scene.actors);
    }
  }
  if (!hasMobiles || !hasActors) {
    throw json::problem(std::string("\"") + (hasMobiles ? "actors" : "mobiles") + "\" is missing");
  }
}

}  // namespace grouptracker
