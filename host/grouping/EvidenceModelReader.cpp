#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/grouping/EvidenceModel.h"

#include <QFile>
#include <nlohmann/json.hpp>

#include <cmath>
#include <initializer_list>
#include <sstream>
#include <system_error>
#include <utility>

// Has to stand outside of any namespace: resources of a static library are not found without it.
static void initializeResources() {
  Q_INIT_RESOURCE(grouping);
}

namespace grouptracker {

namespace {

using Json = nlohmann::json;
using Path = std::vector<std::string>;

constexpr std::size_t largestFile = std::size_t{1024} * 1024;  // bytes; a model takes five thousand

std::string readAll(std::istream& in, const std::string& name) {
  std::string content(largestFile + 1, '\0');
  try {
    in.read(content.data(), static_cast<std::streamsize>(content.size()));
  } catch (const std::system_error& failure) {
    throw InputError(name, "cannot be read: " + failure.code().message());
  }
  content.resize(static_cast<std::size_t>(in.gcount()));
  if (content.size() > largestFile) {
    throw InputError(name, "too large for a model");
  }
  return content;
}

std::uint64_t lineAt(const std::string& content, std::size_t byte) {
  const auto end = content.begin() + static_cast<std::ptrdiff_t>(std::min(byte, content.size()));
  return 1 + static_cast<std::uint64_t>(std::count(content.begin(), end, '\n'));
}

}  // namespace

/// Reads one model. Knows where in the text each key stands, for messages.
class EvidenceModelReader {
 public:
  EvidenceModelReader(std::istream& in, std::string name)
      : m_name(std::move(name)), m_content(readAll(in, m_name)) {
    try {
      m_document = Json::parse(m_content);
    } catch (const Json::parse_error& failure) {
      throw InputError(m_name, lineAt(m_content, failure.byte), "not valid JSON");
    } catch (const Json::out_of_range& failure) {
      // The parser says which number it is, but not where.
      const std::string problem = failure.what();
      const std::size_t first = problem.find('\'') + 1;
      const std::string number = problem.substr(first, problem.rfind('\'') - first);
      throw InputError(m_name, lineAt(m_content, m_content.find(number)),
                       "not valid JSON: a number that does not fit");
    }
  }

  EvidenceModel read() {
    for (const char* flag : EvidenceModel::flagNames) {
      m_model.m_weights.push_back(number(value({"flags", flag}), {"flags", flag}));
    }
    for (std::size_t i = 0; i < pairFeatures.size(); ++i) {
      readCurve(pairFeatures[i], m_model.m_curves[i]);
    }
    refuseUnknownFeatures();
    readLearnedFrom();
    return std::move(m_model);
  }

 private:
  void readCurve(const PairFeature& feature, EvidenceModel::Curve& curve) {
    const Path path{"features", feature.name};
    const Path toKnots{"features", feature.name, "knots"};
    curve.knots = numbers(toKnots);
    if (curve.knots.size() < 2) {
      fail(toKnots, "needs two knots at least");
    }
    if (std::adjacent_find(curve.knots.begin(), curve.knots.end(), std::greater_equal<>()) !=
        curve.knots.end()) {
      fail(toKnots, "must be ascending");
    }
    for (std::size_t i = 0; i < EvidenceModel::markNames.size(); ++i) {
      const char* mark = EvidenceModel::markNames[i];
      if (i > 0 && !value(path).contains(mark)) {
        continue;  // a curve need not depend on a mark
      }
      const Path toWeights{"features", feature.name, mark};
      const std::vector<double> weights = numbers(toWeights);
      if (weights.size() != curve.knots.size()) {
        fail(toWeights, "needs one weight for each of the " + std::to_string(curve.knots.size()) +
                            " knots, not " + std::to_string(weights.size()));
      }
      curve.lines.push_back({static_cast<EvidenceModel::Mark>(i), m_model.m_weights.size()});
      m_model.m_weights.insert(m_model.m_weights.end(), weights.begin(), weights.end());
    }
  }

  void refuseUnknownFeatures() const {
    for (const auto& feature : value({"features"}).items()) {
      const bool isKnown =
          std::any_of(pairFeatures.begin(), pairFeatures.end(),
                      [&](const PairFeature& known) { return feature.key() == known.name; });
      if (!isKnown) {
        fail({"features", feature.key()}, "is no known feature");
      }
    }
  }

  void readLearnedFrom() {
    if (!m_document.contains("learnedFrom")) {
      return;
    }
    const Path path{"learnedFrom"};
    const Json& names = value(path);
    if (!names.is_array()) {
      fail(path, "must be an array of strings");
    }
    for (const Json& name : names) {
      if (!name.is_string()) {
        fail(path, "must be an array of strings");
      }
      m_model.m_learnedFrom.push_back(name.get<std::string>());
    }
  }

  /// What stands under the keys of a path.
  const Json& value(const Path& path) const {
    const Json* found = &m_document;
    for (std::size_t i = 0; i < path.size(); ++i) {
      const Path parent(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(i));
      if (!found->is_object()) {
        fail(parent, "must be an object");
      }
      const auto member = found->find(path[i]);
      if (member == found->end()) {
        fail(parent, "lacks \"" + path[i] + "\"");
      }
      found = &*member;
    }
    return *found;
  }

  double number(const Json& value, const Path& path) const {
    if (!value.is_number() || !std::isfinite(value.get<double>())) {
      fail(path, "must be a number");
    }
    return value.get<double>();
  }

  std::vector<double> numbers(const Path& path) const {
    const Json& list = value(path);
    if (!list.is_array()) {
      fail(path, "must be an array of numbers");
    }
    std::vector<double> result;
    for (const Json& item : list) {
      if (!item.is_number()) {
        fail(path, "must be an array of numbers");
      }
      result.push_back(item.get<double>());
    }
    return result;
  }

  /// The parser does not keep places, so the keys are sought one behind the other in the text.
  [[noreturn]] void fail(const Path& path, const std::string& problem) const {
    std::size_t place = m_content.find_first_not_of(" \t\r\n");
    std::string words;
    for (const std::string& key : path) {
      const std::size_t found = m_content.find("\"" + key + "\"", place);
      place = found == std::string::npos ? place : found;
      words += words.empty() ? "\"" : ".";
      words += key;
    }
    words += words.empty() ? "the model" : "\"";
    throw InputError(m_name, lineAt(m_content, place), words + " " + problem);
  }

  std::string m_name;
  std::string m_content;
  Json m_document;
  EvidenceModel m_model;
};

EvidenceModel EvidenceModel::builtIn() {
  initializeResources();
  QFile file(":/grouping/default_model.json");
  file.open(QIODevice::ReadOnly);
  std::istringstream in(file.readAll().toStdString());
  return read(in, "default_model.json");
}

EvidenceModel EvidenceModel::read(const std::string& path) {
  InputFile file(path);
  return read(file.stream(), path);
}

EvidenceModel EvidenceModel::read(std::istream& in, const std::string& name) {
  return EvidenceModelReader(in, name).read();
}

}  // namespace grouptracker
