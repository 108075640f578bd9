#pragma once

#include "host/base/InputError.h"
#include "host/people/ObservationTable.h"

#include <istream>
#include <memory>
#include <string>

namespace grouptracker {

/// Reads people's boxes from XML as it comes with the PETS recordings:
///
///     <dataset>
///       <frame number="0">
///         <objectlist>
///           <object id="9"><box h="75.17" w="31.03" xc="514.71" yc="195.27"/></object>
///         </objectlist>
///       </frame>
///     </dataset>
///
/// `h`, `w`, `xc` and `yc` are height, width and centre in pixels. Frames may come in any order and
/// may be empty; other elements and attributes are passed over. Broken XML, a missing or wrong
/// number and a box of negative size are an `InputError`; behind all but broken XML the reader goes
/// on when `onProblem` does not throw.
std::unique_ptr<ObservationTable> readCvml(std::istream& in, const std::string& name,
                                           const ProblemHandler& onProblem = throwProblem);
/// The same for a file.
std::unique_ptr<ObservationTable> readCvml(const std::string& path,
                                           const ProblemHandler& onProblem = throwProblem);

}  // namespace grouptracker
