#pragma once

#include "host/base/FileDescriptor.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace grouptracker {

/// Something cannot be written; its text is the one line that the user sees, `FILE: what is wrong`.
class OutputError : public std::runtime_error {
 public:
  OutputError(const std::string& file, const std::string& problem)
      : std::runtime_error(file + ": " + problem) {}
};

/// What becomes of a file that is there already.
enum class OldContent { replaced, kept };

/// Opens a file, pipe or device for writing: the one way in which the program opens its outputs. A
/// regular file is locked as long as it is open, so that no two runs write the same one, and only
/// then emptied; links are followed; images stay, as inputs name some within. For the reader of a
/// named pipe it waits until there is one or the program is asked to stop, which is
/// `OutputInterrupted`. What else cannot be opened is an `OutputError`. The descriptor blocks.
FileDescriptor openOutput(const std::string& path, OldContent old = OldContent::replaced);

/// The same for a place that must be a regular file or nothing yet, such as a database.
FileDescriptor openRegularOutput(const std::string& path, OldContent old = OldContent::replaced);

/// Locks a file in the same way into which somebody else writes on behalf of this run. One that is
/// no regular file, or cannot be opened, is left to him.
FileDescriptor lockForOthers(const std::string& path);

/// Makes a folder with those above it, as far as they are missing. What cannot be made is an
/// `OutputError`.
void makeFolder(const std::string& path);

/// Locks a folder, into which files are written, in the same way.
FileDescriptor lockFolder(const std::string& path);

/// Whether anybody can read what is written to an open file: not when it is a pipe whose reader has
/// gone.
bool hasReader(int descriptor);

/// Whether an open file is a regular one, which can be cut and read again.
bool isRegular(const FileDescriptor& file);

/// Refuses an output that would overwrite an input or another output, whatever the two are called:
/// throws `OutputError` that names both. "-" among the inputs is standard input; standard output is
/// one of the outputs. Empty names and files that do not exist yet are passed over, and so are
/// pipes and devices, which may serve several ends.
void refuseOverwriting(const std::vector<std::string>& outputs,
                       const std::vector<std::string>& inputs);

}  // namespace grouptracker
