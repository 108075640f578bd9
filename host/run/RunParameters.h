#pragma once

#include "host/run/ParameterFile.h"

#include <string>
#include <vector>

namespace grouptracker {

/// The parameters of one run: those of a file, or a built-in set that suits the rate, with single
/// values that the user changes.
class RunParameters {
 public:
  /// `file` is empty for the built-in set; `changes` are texts "label=value". A wrong file is a
  /// `WrongParameters`, a wrong change an `InputError`.
  RunParameters(const std::string& file, const std::vector<std::string>& changes);

  /// Makes a built-in set suit the rate, frames a second; until then it is for frames as people are
  /// usually annotated. A user's own file stays as it is.
  void suit(double framesPerSecond);
  const ParameterFile& values() const { return m_values; }
  /// A file of all that for the process to read: the user's own, or one that is written into the
  /// user's cache, or else among the temporary files. It stays there, for `explain` and `report`
  /// look it up; the same parameters have the same file. What cannot be written is an
  /// `OutputError`.
  std::string file() const;
  /// The text of that file, with what each parameter means behind the values, where the process
  /// does not look.
  std::string textWithMeanings() const;

 private:
  void change();

  std::string m_file;
  std::vector<std::string> m_changes;
  double m_rate;  ///< that the built-in set suits
  ParameterFile m_values;
};

/// The text of the parameter file that holds when the user gives none: the sample for people who
/// were annotated, with what it says in frames derived from seconds. `framesPerSecond` is above 0.
std::string builtInParameters(double framesPerSecond);

}  // namespace grouptracker
