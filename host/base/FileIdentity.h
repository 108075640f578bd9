#pragma once

#include <string>
#include <vector>

namespace grouptracker {

/// Refuses an output that would overwrite an input or another output, whatever the two are called:
/// throws `OutputError` that names both. "-" among the inputs is standard input; standard output is
/// one of the outputs. Empty names and files that do not exist yet are passed over, and so are
/// pipes and devices, which may serve several ends.
void refuseOverwriting(const std::vector<std::string>& outputs,
                       const std::vector<std::string>& inputs);

}  // namespace grouptracker
