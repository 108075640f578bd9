#pragma once

#include "host/pictures/RecentPast.h"

#include <opencv2/core.hpp>

namespace grouptracker {

/// Draws people and groups on the image of the reported frame: boxes, traces of the feet, and for
/// each group a hull around its members' boxes with its number, all in the group's colour; people
/// alone faintly.
void paintOnImage(cv::Mat& image, const RunStep& step, const RecentPast& past);

}  // namespace grouptracker
