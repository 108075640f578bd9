#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>

namespace grouptracker {

/// What the host reads for itself in the tracker's parameter file: the few values that it needs,
/// and where the file is wrong. The tracker reads the file again and ends the program when it is
/// wrong; it names the token, this names the line.
struct ParameterFile {
  std::uint32_t delay = 0;             ///< frames from a frame to the report about it
  bool needsImages = false;            ///< whether the tracker draws on the frames' images
  std::optional<std::string> problem;  ///< "FILE:LINE: what is expected"; none when all is well
};

/// Reads the 47 pairs of label and value; `name` is the file's name in messages.
ParameterFile readParameterFile(std::istream& in, const std::string& name);
/// The same for a file; one that cannot be opened is a problem like any other. A pipe could not be
/// read again and is an `InputError`.
ParameterFile readParameterFile(const std::string& path);

}  // namespace grouptracker
