#pragma once

#include "host/base/FileDescriptor.h"

#include <string>

namespace grouptracker {

/// Makes a file without a name, so that it vanishes with the program however that ends; in the
/// folder of the environment variable TMPDIR, else in /var/tmp. `folder` is set to that place, for
/// messages. A file that cannot be made is an `OutputError`.
FileDescriptor openTemporaryFile(std::string& folder);

}  // namespace grouptracker
