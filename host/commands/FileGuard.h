#pragma once

#include "host/commands/CommandLine.h"

namespace grouptracker {

/// Refuses a command line that would destroy something, whatever the command: an output that is one
/// of the files that the command reads, also those within an input's folder and the one on standard
/// input, or that is another output or the file on standard output, under whatever name. Throws
/// `OutputError` that names both. Files that an input names inside are the command's own affair.
void refuseToDestroy(const Options& command);

}  // namespace grouptracker
