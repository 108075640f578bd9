#include "host/run/ParameterFile.h"

#include "host/base/InputError.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <variant>

namespace grouptracker {

namespace {

using Value = std::variant<double, std::uint32_t, int, bool, std::string>;

const Value number = 0.0;
const Value positive = std::uint32_t{0};
const Value integer = 0;
const Value flag = false;
const Value text = std::string();

/// What a user is told to write, by the type of the value.
const std::array<const char*, std::variant_size_v<Value>> expectations{
    "a number", "a whole number", "a whole number", "0 or 1", "a text without blanks"};

struct Parameter {
  const char* label;
  Value value;  ///< shows the type
};

const char* const delayLabel = "temporalWinSize:";
const char* const saveLabel = "saveOutput:";
const char* const displayLabel = "extDisplayOn:";

/// All pairs, in the only order in which the tracker accepts them.
const std::array<Parameter, 47> parameters{{
    {"coherenceThreshold:", number},
    {"distWeight:", positive},
    {"speedSimWeight:", positive},
    {"dirSimWeight:", positive},
    {"distanceThreshold:", number},
    {"speedSimThreshold:", number},
    {"dirSimThreshold:", number},
    {"reliabilityThreshold:", number},
    {delayLabel, positive},
    {"temporalWinForRemoval:", positive},
    {"recentLinkWeight:", number},
    {"maxDistGroupCreation:", number},
    {"maxDistGroupMerge:", number},
    {"maxDistGroupUpdate:", number},
    {"imagesFolder:", text},
    {"fileFormat:", text},
    {"firstImage:", integer},
    {saveLabel, flag},
    {"outputFolder:", text},
    {displayLabel, flag},
    {"openCVOutput:", flag},
    {"useClustering:", flag},
    {"tolerance:", number},
    {"sonDistanceWeight:", number},
    {"fatherDistanceWeight:", number},
    {"minReliabilityBest:", number},
    {"minReliabilityOthers:", number},
    {"minCrowdWidth:", number},
    {"minCrowdHeight:", number},
    {"histogramDepth:", integer},
    {"mvtAreaTh:", number},
    {"mvtSpeedTh:", number},
    {"mvtSpeedNFrames:", integer},
    {"mvtFrameGap:", integer},
    {"mvtBrightnessTh:", integer},
    {"mvtBlobsFilter:", integer},
    {"personWidth:", number},
    {"personDepth:", number},
    {"personHeight:", number},
    {"positionNormalization:", flag},
    {"detectSuddenMvt:", flag},
    {"trajectoryLength:", integer},
    {"samplingStride:", number},
    {"samplingStrideDetection:", integer},
    {"gaussianGridFile:", text},
    {"alpha:", number},
    {"minNumCells:", integer},
}};

/// Goes through the file like the tracker, with the formatted extraction of the standard streams,
/// so that both agree on what a value is; counts the lines on its way.
class Walk {
 public:
  explicit Walk(std::istream& in) : m_in(in) {}

  /// Reads one token or value; false when there is none of that type.
  template <typename T>
  bool read(T& value) {
    skipBlanks();
    return static_cast<bool>(m_in >> value);
  }
  std::uint64_t line() const { return m_line; }

 private:
  void skipBlanks() {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    for (int next = m_in.peek(); next != EOF && blanks.find(static_cast<char>(next)) != blanks.npos;
         next = m_in.peek()) {
      m_line += m_in.get() == '\n' ? 1 : 0;
    }
  }

  std::istream& m_in;
  std::uint64_t m_line = 1;
};

void keep(const std::string& label, const Value& value, ParameterFile& file) {
  if (label == delayLabel) {
    file.delay = std::get<std::uint32_t>(value);
  } else if (label == saveLabel || label == displayLabel) {
    file.needsImages = file.needsImages || std::get<bool>(value);
  }
}

}  // namespace

ParameterFile readParameterFile(std::istream& in, const std::string& name) {
  constexpr std::size_t longestQuote = 40;  // characters of a wrong token shown to the user
  ParameterFile file;
  Walk walk(in);
  const auto fail = [&](const std::string& problem) {
    file.problem = name + ":" + std::to_string(walk.line()) + ": " + problem;
    return file;
  };
  for (const Parameter& parameter : parameters) {
    const std::string label = parameter.label;
    std::string token;
    if (!walk.read(token)) {
      return fail("the file ends where the label \"" + label + "\" is expected");
    }
    if (token != label) {
      return fail("the label \"" + label + "\" is expected instead of \"" +
                  token.substr(0, longestQuote) + "\"");
    }
    Value value = parameter.value;
    if (!std::visit([&](auto& v) { return walk.read(v); }, value)) {
      return fail(std::string(expectations[value.index()]) + " is expected after \"" + label +
                  "\"");
    }
    keep(label, value, file);
  }
  return file;
}

ParameterFile readParameterFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored) && !std::filesystem::is_regular_file(path, ignored) &&
      !std::filesystem::is_directory(path, ignored)) {
    throw InputError(path, "the parameters must be in a regular file");
  }
  std::ifstream in(path);
  if (!in.is_open()) {
    ParameterFile file;
    file.problem = path + ":1: cannot be opened: " + std::strerror(errno) + "; the label \"" +
                   parameters.front().label + "\" is expected";
    return file;
  }
  return readParameterFile(in, path);
}

}  // namespace grouptracker
