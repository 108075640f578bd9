#include "host/people/ObservationSource.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace grouptracker {

namespace {

bool areWithin(double limit, std::initializer_list<double> values) {
  return std::all_of(values.begin(), values.end(),
                     [limit](double value) { return std::abs(value) <= limit; });
}

}  // namespace

void expectMetres(const cv::Point2d& position) {
  if (!areWithin(farthestPosition, {position.x, position.y})) {
    throw ValueProblem("the position lies too far away to be metres");
  }
}

void expectPixels(const cv::Rect2d& box) {
  if (box.width < 0.0 || box.height < 0.0) {
    throw ValueProblem("the box has a negative width or height");
  }
  if (!areWithin(farthestBox, {box.x, box.y, box.width, box.height})) {
    throw ValueProblem("the box lies too far away to be pixels");
  }
}

}  // namespace grouptracker
