#pragma once

#include "host/base/InputError.h"
#include "host/input/OpenedInput.h"
#include "host/input/TrackRows.h"

#include <string>

namespace grouptracker {

/// Reads people's places on the ground from an SQLite file as pedestrian simulations write it: the
/// table `trajectory_data` with the columns `frame`, `id`, `pos_x` and `pos_y`, and, if it is
/// there, `metadata` with keys and values, of which `fps` is the frame rate. Without
/// `trajectory_data` the first table is taken that has such columns, see `TrackColumns`. What
/// SQLite cannot read, a file without such a table, and values that are no numbers are an
/// `InputError` that names the row; when `onProblem` does not throw it, the row is passed over.
TrackRecording readTrajectoryDatabase(const std::string& path, const TableChoice& choice,
                                      const ProblemHandler& onProblem = throwProblem);

/// Whether a file is an SQLite database.
bool isTrajectoryDatabase(const std::string& path);

/// Opens such a file.
OpenedInput openTrajectoryDatabase(const std::string& path, const InputOptions& options);

}  // namespace grouptracker
