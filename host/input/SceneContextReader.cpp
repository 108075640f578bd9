#include "host/input/SceneContextReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <iterator>
#include <list>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

using Json = nlohmann::json;

constexpr std::size_t largestFile = std::size_t{16} * 1024 * 1024;  // bytes
constexpr std::size_t chunkSize = std::size_t{16} * 1024;           // bytes
constexpr int deepestValue = 64;                                    // values around it
constexpr std::size_t coordinates = 3;

const Json& member(const Json& object, const std::string& path, const char* key) {
  if (!object.is_object()) {
    throw ValueProblem(path + " must be an object");
  }
  const auto found = object.find(key);
  if (found == object.end()) {
    throw ValueProblem("\"" + std::string(key) + "\" is missing in " + path);
  }
  return *found;
}

const Json& array(const Json& object, const std::string& path, const char* key) {
  const Json& value = member(object, path, key);
  if (!value.is_array()) {
    throw ValueProblem(path + "." + key + " must be an array");
  }
  return value;
}

std::string text(const Json& object, const std::string& path, const char* key) {
  const Json& value = member(object, path, key);
  if (!value.is_string()) {
    throw ValueProblem(path + "." + key + " must be a string");
  }
  return value.get<std::string>();
}

std::string indexed(const std::string& path, std::size_t index) {
  return path + "[" + std::to_string(index) + "]";
}

cv::Point3d vertex(const Json& value, const std::string& path) {
  const bool isPoint = value.is_array() && value.size() == coordinates &&
                       std::all_of(value.begin(), value.end(),
                                   [](const Json& number) { return number.is_number(); });
  if (!isPoint) {
    throw ValueProblem(path + " must be three numbers");
  }
  return {value[0].get<double>(), value[1].get<double>(), value[2].get<double>()};
}

ContextElement element(const Json& value, const std::string& path) {
  ContextElement result{text(value, path, "kind"), text(value, path, "shape"), {}};
  const Json& vertices = array(value, path, "vertices");
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    result.vertices.push_back(vertex(vertices[i], indexed(path + ".vertices", i)));
  }
  return result;
}

std::string readAll(std::istream& in, const std::string& name) {
  std::string content;
  std::array<char, chunkSize> chunk;
  try {
    while (in.read(chunk.data(), chunk.size()) || in.gcount() > 0) {
      content.append(chunk.data(), static_cast<std::size_t>(in.gcount()));
      if (content.size() > largestFile) {
        throw InputError(name, "too large for a scene context");
      }
    }
  } catch (const std::system_error& failure) {
    throw InputError(name, "cannot be read: " + failure.code().message());
  }
  return content;
}

/// Stops the parser at a depth that no context has, before a file of brackets fills the memory.
bool refuseDeepValues(int depth, Json::parse_event_t, Json&) {
  if (depth > deepestValue) {
    throw ValueProblem("values are nested too deep");
  }
  return true;
}

/// The line of a place in the text, from 1.
std::uint64_t lineOf(const std::string& content, std::size_t byte) {
  const auto end = content.begin() + static_cast<std::ptrdiff_t>(std::min(byte, content.size()));
  return 1 + static_cast<std::uint64_t>(std::count(content.begin(), end, '\n'));
}

}  // namespace

QSharedPointer<kelDataContext> readSceneContext(std::istream& in, const std::string& name) {
  const std::string content = readAll(in, name);
  try {
    const Json document = Json::parse(content, refuseDeepValues);
    const Json& values = array(document, "the context", "elements");
    std::list<ContextElement> elements;
    for (std::size_t i = 0; i < values.size(); ++i) {
      elements.push_back(element(values[i], indexed("elements", i)));
    }
    return QSharedPointer<kelDataContext>::create(std::move(elements));
  } catch (const Json::parse_error& failure) {
    throw InputError(name, lineOf(content, failure.byte), "not valid JSON");
  } catch (const Json::out_of_range& failure) {
    throw InputError(name, 1, "holds a number that is not finite");
  } catch (const ValueProblem& wrong) {
    throw InputError(name, 1, wrong.what());
  }
}

QSharedPointer<kelDataContext> readSceneContext(const std::string& path) {
  InputFile file(path);
  return readSceneContext(file.stream(), path);
}

}  // namespace grouptracker
