#pragma once

#include "host/evaluation/RunRecord.h"
#include "host/run/FrameReport.h"

#include <istream>
#include <string>

namespace grouptracker {

/// Reads the groups file of a run, the JSON Lines that `run` writes: of each line whose reported
/// frame has begun the input's frame, the persons, and the visible groups with their persons. Bad
/// input is an `InputError` with file and line.
RunRecord readRunRecord(std::istream& in, const std::string& name);
RunRecord readRunRecord(const std::string& path);

/// The same from a report that has not been written.
void appendReport(const FrameReport& report, RunRecord& run);

}  // namespace grouptracker
