#pragma once

#include "tracker/parameters/ParameterTable.h"

#include <array>
#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

/// One entry of the parameter file: the label, colon included, and the static member it fills.
struct Parameter {
  const char* label;
  std::variant<double*, unsigned int*, int*, bool*, std::string*> member;
};

/// All parameters in the order of the file, bound to their members.
const std::array<Parameter, parameterCount>& parameterTable();

/// Reads the parameters from the stream, label by label. A wrong label, a value that does not parse
/// or a file that cannot be read ends the program with status 1 and a message on standard output.
template <typename Stream>
void readParameters(Stream& in);

/// Reads one label; another one than expected ends the program.
template <typename Stream>
void ReadLabel(Stream& in, const char* expected);

/// What would end the program when these parameters were read, or leave the last one without its
/// value; empty when nothing would. The parameters stay as they are.
std::string parameterProblem(std::istream& in);

/// The values of all parameters at a moment, in the order of the table.
using ParameterValues = std::vector<ParameterValue>;
ParameterValues parameterValues();
/// The labels whose values are others by now, one behind the other.
std::string changedLabels(const ParameterValues& before);

/// Stands for a process that relies on the parameters, as long as it lives; they are counted.
class ParameterUser {
 public:
  ParameterUser() { ++s_count; }
  ParameterUser(const ParameterUser&) : ParameterUser() {}
  ParameterUser& operator=(const ParameterUser&) = default;
  ~ParameterUser() { --s_count; }

  static int count() { return s_count; }

 private:
  inline static int s_count = 0;
};
