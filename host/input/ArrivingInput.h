#pragma once

#include "host/input/OpenedInput.h"

#include <string>

namespace grouptracker {

/// Whether an input is read as it arrives: standard input, a named pipe, a topic of a broker, and
/// files of people messages. Pipes in formats that can only be read as a whole are none.
bool arrives(const std::string& path, const InputOptions& options);

/// Opens such an input without waiting for its first line, which tells whether it is a scene,
/// people messages or lines of the MOTChallenge, unless the options say so. There is no camera but
/// that of the options, since nothing can be looked at in advance.
OpenedInput openArriving(const std::string& path, const InputOptions& options);

}  // namespace grouptracker
