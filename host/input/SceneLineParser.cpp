#include "host/input/SceneLineParser.h"

#include "host/base/JsonOnDemand.h"
#include "host/input/IdLists.h"

#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>

namespace grouptracker {

struct SceneLineParser::Buffers {
  simdjson::dom::parser document;
  simdjson::ondemand::parser passing;
  IdLists lists;
};

SceneLineParser::SceneLineParser(ScenePart part)
    : m_buffers(std::make_unique<Buffers>()), m_part(part) {}
SceneLineParser::~SceneLineParser() = default;
SceneLineParser::SceneLineParser(SceneLineParser&&) noexcept = default;
SceneLineParser& SceneLineParser::operator=(SceneLineParser&&) noexcept = default;

namespace {

/// A line of which all is wanted, gone through once: the usual way.
class PassingLine {
 public:
  using Value = json::PassingValue;

  /// Null for `lists` when all are to be read.
  PassingLine(std::string_view line, IdLists* lists)
      : m_end(line.data() + line.size()), m_lists(lists) {
    if (m_lists != nullptr) {
      m_lists->beginLine();
    }
  }

  void readFathers(Value value, std::vector<SceneFather>& fathers) const;
  void readList(Value value, const std::optional<std::uint32_t>& id, SceneActor& actor) const;
  /// Lists are remembered by the id that was read before them, so neither may be told twice.
  static void refuseAgain(bool isThere);

 private:
  const char* m_end;
  IdLists* m_lists;
};

/// A line as a document, of which a part may be wanted only; gives the reasons for what is wrong.
class DocumentLine {
 public:
  using Value = json::Value;

  explicit DocumentLine(ScenePart part) : m_part(part) {}

  void readFathers(Value value, std::vector<SceneFather>& fathers) const;
  void readList(Value value, const std::optional<std::uint32_t>& id, SceneActor& actor) const;
  static void refuseAgain(bool /*isThere*/) {}

 private:
  ScenePart m_part;
};

template <typename Value>
cv::Rect readBox2D(Value value) {
  const auto [x, y, width, height] = json::asNumbers<int, 4>(value, "box2d");
  if (width < 0 || height < 0) {
    throw json::problem("box2d has a negative width or height");
  }
  if (x > std::numeric_limits<int>::max() - width || y > std::numeric_limits<int>::max() - height) {
    throw json::problem("box2d ends beyond the largest integer");
  }
  return {x, y, width, height};
}

template <typename Value>
BoundingBox3D readBox3D(Value value) {
  const auto b = json::asNumbers<float, 6>(value, "box3d");
  return {b[0], b[1], b[2], b[3], b[4], b[5]};
}

template <typename Value>
cv::Point3f readPosition(Value value) {
  const auto p = json::asNumbers<float, 3>(value, "position");
  return {p[0], p[1], p[2]};
}

template <typename Value>
void readFather(Value value, SceneFather& father) {
  std::optional<std::uint32_t> id;
  std::optional<double> reliability;
  json::eachField(value, "a father", [&](const auto& key, const auto& field) {
    if (key == "id") {
      id = json::as<std::uint32_t>(field, "id");
    } else if (key == "reliability") {
      reliability = json::as<double>(field, "reliability");
    } else {
      json::passOver(field);
    }
  });
  father = {json::required(id, "id"), json::required(reliability, "reliability")};
}

template <typename Line>
void readMobile(const Line& line, typename Line::Value value, SceneMobile& mobile) {
  mobile.box3D.reset();
  mobile.position.reset();
  mobile.fathers.clear();
  std::optional<std::uint32_t> id;
  std::optional<std::string> type;
  std::optional<cv::Rect> box2D;
  json::eachField(value, "a mobile", [&](const auto& key, const auto& field) {
    if (key == "id") {
      id = json::as<std::uint32_t>(field, "id");
    } else if (key == "type") {
      type = json::asText(field, "type");
    } else if (key == "box2d") {
      box2D = readBox2D(field);
    } else if (key == "box3d") {
      mobile.box3D = readBox3D(field);
    } else if (key == "position") {
      mobile.position = readPosition(field);
    } else if (key == "fathers") {
      line.readFathers(field, mobile.fathers);
    } else {
      json::passOver(field);
    }
  });
  mobile.id = json::required(id, "id");
  mobile.type = json::required(type, "type");
  mobile.box2D = json::required(box2D, "box2d");
}

template <typename Value>
void readArrayOfIds(Value value, std::vector<std::uint32_t>& ids) {
  json::readArray(
      value, "mobiles", [](auto item) { return json::as<std::uint32_t>(item, "an id"); }, ids);
}

/// The last id of an array, alone; none of an empty one.
void readLastId(json::Value value, std::vector<std::uint32_t>& ids) {
  ids.clear();
  simdjson::dom::array values;
  if (value.get(values) != simdjson::SUCCESS) {
    throw json::problem("mobiles must be an array");
  }
  std::optional<json::Value> last;
  for (const json::Value item : values) {
    last = item;
  }
  if (last) {
    ids.push_back(json::as<std::uint32_t>(*last, "an id"));
  }
}

template <typename Line>
void readActor(const Line& line, typename Line::Value value, SceneActor& actor) {
  actor.type.reset();
  actor.box3D.reset();
  actor.goesOn = false;
  actor.losesFirst = false;
  std::optional<std::uint32_t> id;
  bool hasMobiles = false;
  json::eachField(value, "an actor", [&](const auto& key, const auto& field) {
    if (key == "id") {
      line.refuseAgain(id.has_value());
      id = json::as<std::uint32_t>(field, "id");
    } else if (key == "type") {
      actor.type = json::asText(field, "type");
    } else if (key == "box3d") {
      actor.box3D = readBox3D(field);
    } else if (key == "mobiles") {
      line.refuseAgain(hasMobiles);
      line.readList(field, id, actor);
      hasMobiles = true;
    } else {
      json::passOver(field);
    }
  });
  actor.id = json::required(id, "id");
  if (!hasMobiles) {
    throw json::problem("\"mobiles\" is missing");
  }
}

/// Replaces the scene by what the line says; `fields` hands out its fields one by one.
template <typename Line, typename Fields>
void readLine(const Line& line, const Fields& fields, SceneLine& scene) {
  scene.frame.reset();
  scene.time.reset();
  scene.image.clear();
  bool hasMobiles = false;
  bool hasActors = false;
  fields([&](const auto& key, const auto& field) {
    if (key == "frame") {
      scene.frame = json::as<std::int64_t>(field, "frame");
    } else if (key == "time") {
      scene.time = json::as<double>(field, "time");
    } else if (key == "image") {
      scene.image = json::asText(field, "image");
    } else if (key == "mobiles") {
      hasMobiles = true;
      json::readArray(
          field, "mobiles",
          [&line](auto item, SceneMobile& mobile) { readMobile(line, item, mobile); },
          scene.mobiles);
    } else if (key == "actors") {
      line.refuseAgain(hasActors);
      hasActors = true;
      json::readArray(
          field, "actors", [&line](auto item, SceneActor& actor) { readActor(line, item, actor); },
          scene.actors);
    } else {
      json::passOver(field);
    }
  });
  if (!hasMobiles || !hasActors) {
    throw json::problem(std::string("\"") + (hasMobiles ? "actors" : "mobiles") + "\" is missing");
  }
}

void PassingLine::readFathers(Value value, std::vector<SceneFather>& fathers) const {
  json::readArray(
      value, "fathers", [](auto item, SceneFather& father) { readFather(item, father); }, fathers);
}

void PassingLine::readList(Value value, const std::optional<std::uint32_t>& id,
                           SceneActor& actor) const {
  const char* const begin = value.raw_json_token().data();
  const std::string_view text(begin, static_cast<std::size_t>(m_end - begin));
  const bool isKnown = m_lists != nullptr && id;
  const auto step =
      isKnown && text.starts_with('[') ? m_lists->step(*id, text) : std::optional<IdLists::Step>();
  if (step) {
    actor.goesOn = true;
    actor.losesFirst = step->losesFirst;
    actor.mobiles.assign(1, step->added);
    return;
  }
  readArrayOfIds(value, actor.mobiles);
  if (isKnown && !actor.mobiles.empty()) {
    m_lists->remember(*id, text);
  }
}

void PassingLine::refuseAgain(bool isThere) {
  if (isThere) {
    throw json::Unusual();
  }
}

void DocumentLine::readFathers(Value value, std::vector<SceneFather>& fathers) const {
  if (m_part == ScenePart::whole) {
    json::readArray(
        value, "fathers", [](auto item, SceneFather& father) { readFather(item, father); },
        fathers);
  }
}

void DocumentLine::readList(Value value, const std::optional<std::uint32_t>& /*id*/,
                            SceneActor& actor) const {
  m_part == ScenePart::whole ? readArrayOfIds(value, actor.mobiles)
                             : readLastId(value, actor.mobiles);
}

}  // namespace

void SceneLineParser::parse(const std::string& line, SceneLine& scene) {
  if (m_part == ScenePart::whole) {
    try {
      parseInPassing(line, scene);
      return;
    } catch (const ValueProblem&) {
      // The document knows what is wrong, if anything is.
      forgetLists();
    }
  }
  const auto fields = [&](const auto& take) {
    json::eachField(json::parse(m_buffers->document, line), "the line", take);
  };
  readLine(DocumentLine(m_part), fields, scene);
}

void SceneLineParser::parseInPassing(const std::string& line, SceneLine& scene) {
  auto document = json::usual(m_buffers->passing.iterate(line));
  const auto fields = [&](const auto& take) { json::eachField(document, take); };
  readLine(PassingLine(line, m_readsWholeLists ? nullptr : &m_buffers->lists), fields, scene);
}

void SceneLineParser::forgetLists() {
  m_buffers->lists.forget();
}

}  // namespace grouptracker
