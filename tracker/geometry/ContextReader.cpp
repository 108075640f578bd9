#include "tracker/geometry/ContextReader.h"

namespace {

bool boundsTheScene(const ContextElement& element) {
  return element.kind == "zone" && (element.shape == "polygon" || element.shape == "rectangle");
}

// The bounds are floats, but a coordinate is compared before it is rounded to one.
void widen(float& lower, float& upper, double coordinate) {
  if (static_cast<double>(lower) > coordinate) {
    lower = static_cast<float>(coordinate);
  }
  if (coordinate > static_cast<double>(upper)) {
    upper = static_cast<float>(coordinate);
  }
}

}  // namespace

void ContextReader::read(float& minX, float& maxX, float& minY, float& maxY,
                         const QSharedPointer<kelDataContext>& context) {
  minX = minY = static_cast<float>(noMinimum);
  maxX = maxY = static_cast<float>(noMaximum);
  if (context.isNull()) {
    return;
  }
  for (const ContextElement& element : context->getContext()) {
    if (!boundsTheScene(element)) {
      continue;
    }
    for (const cv::Point3d& vertex : element.vertices) {
      widen(minX, maxX, vertex.x);
      widen(minY, maxY, vertex.y);
    }
  }
}
