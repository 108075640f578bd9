#pragma once

#include "host/base/InputError.h"
#include "tracker/parameters/ParameterTable.h"

#include <cstdint>
#include <istream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace grouptracker {

/// A parameter file with which nothing can be run; the program then ends with a status of its own.
class WrongParameters : public InputError {
 public:
  explicit WrongParameters(const InputError& error) : InputError(error) {}
};

/// One pair of a parameter file.
struct ParameterEntry {
  const ParameterRow* row = nullptr;  ///< what the pair is about; never null
  ParameterValue value;
  std::string text;        ///< the value as the file has it
  std::uint64_t line = 0;  ///< where the value stands

  /// The value as a number; a count that is below 0 in the file stays so; 0 for a text.
  double number() const;
};

/// A parameter file as the host reads it: what it needs for itself, and where the file is wrong.
/// The tracker reads the file again and ends the program when it is wrong; it names the token, this
/// names the line.
struct ParameterFile {
  std::uint32_t delay = 0;             ///< frames from a frame to the report about it
  bool needsImages = false;            ///< whether the tracker draws on the frames' images
  std::vector<ParameterEntry> values;  ///< all pairs, or those before the problem
  std::optional<InputError> problem;   ///< what is expected where; none when all is well

  /// The pair with a label; null when there is none.
  const ParameterEntry* find(std::string_view label) const;
  /// The number after a label; 0 when there is none.
  double number(std::string_view label) const;
  /// Gives a parameter another value, which is read as the tracker reads it; the label may lack its
  /// colon. What is no label, or no value of its type, is a `ValueProblem`.
  void set(const std::string& label, const std::string& value);
  /// The text of a file with these pairs, one a line.
  std::string text() const;
  /// The same of which some have other numbers.
  std::string with(const std::map<std::string, double>& changes) const;
};

/// Reads all pairs of label and value; `name` is the file's name in messages.
ParameterFile readParameterFile(std::istream& in, const std::string& name);
/// The same for a file; one that cannot be opened is a problem like any other. A pipe could not be
/// read again and is an `InputError`.
ParameterFile readParameterFile(const std::string& path);
/// The same for those who can do nothing with a wrong file: its problem is thrown.
ParameterFile readValidParameterFile(const std::string& path);

}  // namespace grouptracker
