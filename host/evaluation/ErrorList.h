#pragma once

#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/ScoredSteps.h"

#include <string>
#include <vector>

namespace grouptracker {

/// Writes who is in the wrong company at which time step, as comma-separated values:
///
///     frame,person,error,missing,extra
///     780,4,wrong companions,5,7 9
///
/// `error` is "not found" for a member of a true group that was found alone, "not a member" for a
/// person alone that was found in a group, "wrong companions" otherwise; `missing` are the true
/// companions that were not found, `extra` the found ones that are not true. `steps` are those of
/// the run. A file that cannot be written is an `OutputError`.
void writeErrorList(const GroupedFrames& run, const std::vector<PartitionPair>& steps,
                    const std::string& path);

}  // namespace grouptracker
