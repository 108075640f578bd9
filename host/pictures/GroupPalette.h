#pragma once

#include <opencv2/core/types.hpp>

#include <cstdint>

namespace grouptracker {

/// The colour in which a group is shown, blue-green-red. It follows from the id alone, so that a
/// group looks the same in every picture, and ids that follow each other differ clearly.
cv::Scalar colourOf(std::uint32_t group);

}  // namespace grouptracker
