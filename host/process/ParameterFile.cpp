#include "ParameterFile.h"

#include "InputError.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace {

enum class Type { Number, Unsigned, Integer, Bool, Text };

struct Parameter {
  const char* label;
  Type type;
};

const char* const delayLabel = "temporalWinSize:";
const char* const saveLabel = "saveOutput:";
const char* const displayLabel = "extDisplayOn:";

/// All pairs, in the only order in which the tracker accepts them.
const std::array<Parameter, 47> parameters{{
    {"coherenceThreshold:", Type::Number},
    {"distWeight:", Type::Unsigned},
    {"speedSimWeight:", Type::Unsigned},
    {"dirSimWeight:", Type::Unsigned},
    {"distanceThreshold:", Type::Number},
    {"speedSimThreshold:", Type::Number},
    {"dirSimThreshold:", Type::Number},
    {"reliabilityThreshold:", Type::Number},
    {delayLabel, Type::Unsigned},
    {"temporalWinForRemoval:", Type::Unsigned},
    {"recentLinkWeight:", Type::Number},
    {"maxDistGroupCreation:", Type::Number},
    {"maxDistGroupMerge:", Type::Number},
    {"maxDistGroupUpdate:", Type::Number},
    {"imagesFolder:", Type::Text},
    {"fileFormat:", Type::Text},
    {"firstImage:", Type::Integer},
    {saveLabel, Type::Bool},
    {"outputFolder:", Type::Text},
    {displayLabel, Type::Bool},
    {"openCVOutput:", Type::Bool},
    {"useClustering:", Type::Bool},
    {"tolerance:", Type::Number},
    {"sonDistanceWeight:", Type::Number},
    {"fatherDistanceWeight:", Type::Number},
    {"minReliabilityBest:", Type::Number},
    {"minReliabilityOthers:", Type::Number},
    {"minCrowdWidth:", Type::Number},
    {"minCrowdHeight:", Type::Number},
    {"histogramDepth:", Type::Integer},
    {"mvtAreaTh:", Type::Number},
    {"mvtSpeedTh:", Type::Number},
    {"mvtSpeedNFrames:", Type::Integer},
    {"mvtFrameGap:", Type::Integer},
    {"mvtBrightnessTh:", Type::Integer},
    {"mvtBlobsFilter:", Type::Integer},
    {"personWidth:", Type::Number},
    {"personDepth:", Type::Number},
    {"personHeight:", Type::Number},
    {"positionNormalization:", Type::Bool},
    {"detectSuddenMvt:", Type::Bool},
    {"trajectoryLength:", Type::Integer},
    {"samplingStride:", Type::Number},
    {"samplingStrideDetection:", Type::Integer},
    {"gaussianGridFile:", Type::Text},
    {"alpha:", Type::Number},
    {"minNumCells:", Type::Integer},
}};

/// Goes through the file like the tracker, with the formatted extraction of the standard streams,
/// so that both agree on what a value is; counts the lines on its way.
class Walk {
 public:
  explicit Walk(std::istream& in) : m_in(in) {}

  /// Reads one token or value; false when there is none of that type.
  template <typename Value>
  bool read(Value& value) {
    skipBlanks();
    return static_cast<bool>(m_in >> value);
  }
  bool readValue(Type type, ParameterFile& file, const std::string& label);
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

bool Walk::readValue(Type type, ParameterFile& file, const std::string& label) {
  double number = 0.0;
  std::uint32_t count = 0;
  int integer = 0;
  bool flag = false;
  std::string text;
  switch (type) {
    case Type::Number:
      return read(number);
    case Type::Unsigned:
      if (!read(count)) {
        return false;
      }
      file.delay = label == delayLabel ? count : file.delay;
      return true;
    case Type::Integer:
      return read(integer);
    case Type::Bool:
      if (!read(flag)) {
        return false;
      }
      file.needsImages =
          file.needsImages || (flag && (label == saveLabel || label == displayLabel));
      return true;
    case Type::Text:
      return read(text);
  }
  return false;
}

const char* describe(Type type) {
  switch (type) {
    case Type::Number:
      return "a number";
    case Type::Unsigned:
      return "a whole number";
    case Type::Integer:
      return "a whole number";
    case Type::Bool:
      return "0 or 1";
    case Type::Text:
      return "a text without blanks";
  }
  return "a value";
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
    if (!walk.readValue(parameter.type, file, label)) {
      return fail(std::string(describe(parameter.type)) + " is expected after \"" + label + "\"");
    }
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
