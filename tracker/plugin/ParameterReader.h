#pragma once

#include "tracker/parameters/ParameterTable.h"

#include <array>
#include <string>
#include <variant>

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
