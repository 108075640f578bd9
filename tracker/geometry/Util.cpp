#include "tracker/geometry/Util.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Converter.h"

#include <opencv2/core/core_c.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

unsigned int Util::temporalWinSize = 0;
double Util::personWidth = 0.0;
double Util::personDepth = 0.0;
double Util::personHeight = 0.0;
int Util::cnt = 0;

namespace {

constexpr double tallBoxHeight = 2.4;  // metres; more than one standing person from here on
constexpr double wideBoxWidth = 1.4;   // metres; more than one person abreast from here on

float widthOf(const BoundingBox3D& box) {
  return std::fabs(box.b0 - box.b3);
}
float heightOf(const BoundingBox3D& box) {
  return std::fabs(box.b2 - box.b5);
}
bool isTall(const BoundingBox3D& box) {
  return !(heightOf(box) < tallBoxHeight);
}
bool isWide(const BoundingBox3D& box) {
  return widthOf(box) >= wideBoxWidth;
}

/// The rectangle between two corners, each rounded to whole pixels, halves to the even one.
cv::Rect roundedRect(double left, double top, double right, double bottom) {
  return {cv::Point(cvRound(left), cvRound(top)), cv::Point(cvRound(right), cvRound(bottom))};
}

BoundingBox3D boxAt(const cv::Rect& rect, const cv::Point2f& reference) {
  const cv::Point3f position = Converter::computePosition3D(rect, &reference);
  return Converter::computeBoundingBox3D(rect, &reference, &position);
}

/// Distance from a mobile to the nearer of the two people that a tall mobile's rectangle shows.
double distanceToHalves(const BoundingBox3D& other, const cv::Rect& tall) {
  const double middle = tall.y + tall.height * 0.5;
  const cv::Rect lower = roundedRect(tall.x, middle, tall.x + tall.width, tall.y + tall.height);
  const cv::Rect upper = roundedRect(tall.x, tall.y, tall.x + tall.width, middle);

  // Only the upper half asks the converter where its reference point is: if that ever becomes
  // another point of the box than the middle, the lower half keeps the middle.
  const cv::Point2f lowerReference(
      static_cast<float>(lower.x) + static_cast<float>(lower.width) * 0.5F,
      static_cast<float>(lower.y) + static_cast<float>(lower.height) * 0.5F);
  const cv::Point2f upperReference = Converter::computePosition2D(upper);

  return std::min(Util::distance3D(other, boxAt(lower, lowerReference)),
                  Util::distance3D(other, boxAt(upper, upperReference)));
}

cv::Point2f toImage(const cv::Point3f& scenePoint) {
  const cv::Point2d seen = Converter::calibration->worldToImage(scenePoint);
  return {static_cast<float>(seen.x), static_cast<float>(seen.y)};
}

/// Whole pixels between two coordinates; the fraction is cut off.
int pixelsBetween(float a, float b) {
  return std::abs(static_cast<int>(a - b));
}

}  // namespace

int Util::hmodulo(int a, int m) {
  while (a >= m) {
    a -= m;
  }
  while (a < 0) {
    a += m;
  }
  return a;
}

bool Util::equals(const QSharedPointer<kelDataLinkedPhysicalObject>& a,
                  const QSharedPointer<kelDataLinkedPhysicalObject>& b) {
  return a == b;
}

cv::Point3f Util::baseCenter3D(const BoundingBox3D& box) {
  return {(box.b0 + box.b3) / 2, (box.b1 + box.b4) / 2, 0.0F};
}

cv::Point3f Util::baseMotionVector3D(const BoundingBox3D& from, const BoundingBox3D& to) {
  return baseCenter3D(to) - baseCenter3D(from);
}

cv::Point3f Util::getCenter3D(const BoundingBox3D& box) {
  const double halfHeight = static_cast<double>(heightOf(box)) / 2;
  return {(box.b0 + box.b3) / 2, (box.b1 + box.b4) / 2, static_cast<float>(box.b5 + halfHeight)};
}

cv::Point3f Util::motionVector3D(const BoundingBox3D& from, const BoundingBox3D& to) {
  return getCenter3D(to) - getCenter3D(from);
}

cv::Point2f Util::motionVector2D(const cv::Rect& from, const cv::Rect& to) {
  return Converter::computePosition2D(to) - Converter::computePosition2D(from);
}

double Util::norm3D(const cv::Point3f& vector) {
  const double x = vector.x;
  const double y = vector.y;
  const double z = vector.z;
  return std::sqrt(x * x + y * y + z * z);
}

double Util::norm2D(const cv::Point2f& vector) {
  const double x = vector.x;
  const double y = vector.y;
  return std::sqrt(x * x + y * y);
}

double Util::distance3D(const BoundingBox3D& a, const BoundingBox3D& b) {
  return norm3D(baseMotionVector3D(a, b));
}

double Util::distance3D(const cv::Point3f& a, const cv::Point3f& b) {
  return norm3D(b - a);
}

double Util::distance3DPoints(const cv::Point3f& a, const cv::Point3f& b) {
  return norm3D(b - a);
}

double Util::distance2D(const cv::Rect& a, const cv::Rect& b) {
  return norm2D(motionVector2D(a, b));
}

double Util::distance3Dsmart(const BoundingBox3D& boxA, const cv::Rect& rectA,
                             const BoundingBox3D& boxB, const cv::Rect& rectB) {
  if (!isTall(boxA) && !isTall(boxB)) {
    // The width stands for the distance: whoever is within a wide box may be anywhere in it.
    if (isWide(boxA)) {
      return widthOf(boxA);
    }
    return isWide(boxB) ? widthOf(boxB) : distance3D(boxA, boxB);
  }
  if (Converter::calibration.isNull()) {
    return distance3D(boxA, boxB);
  }
  return isTall(boxA) ? distanceToHalves(boxB, rectA) : distanceToHalves(boxA, rectB);
}

double Util::standardPerson2DArea(const cv::Point3f& position) {
  const auto right = static_cast<float>(position.x + personWidth / 2);
  const auto left = static_cast<float>(position.x - personWidth / 2);
  const auto far = static_cast<float>(position.y + personDepth / 2);
  const auto near = static_cast<float>(position.y - personDepth / 2);
  const auto crown = static_cast<float>(personHeight);

  const cv::Point2f farRightFoot = toImage({right, far, 0.0F});
  const cv::Point2f farLeftFoot = toImage({left, far, 0.0F});
  const cv::Point2f farLeftCrown = toImage({left, far, crown});
  const cv::Point2f farRightCrown = toImage({right, far, crown});
  const cv::Point2f nearLeftCrown = toImage({left, near, crown});
  const cv::Point2f nearRightCrown = toImage({right, near, crown});

  const int front =
      pixelsBetween(farLeftFoot.x, farRightFoot.x) * pixelsBetween(farRightFoot.y, farRightCrown.y);
  const int leftSide =
      pixelsBetween(nearLeftCrown.x, farLeftFoot.x) * pixelsBetween(farLeftFoot.y, farLeftCrown.y);
  const int rightSide = pixelsBetween(farRightFoot.y, farRightCrown.y) *
                        pixelsBetween(nearRightCrown.x, farRightCrown.x);
  const int top = pixelsBetween(farLeftCrown.x, farRightCrown.x) *
                  pixelsBetween(farLeftCrown.y, nearRightCrown.y);
  return std::max(leftSide, rightSide) + front + top;
}

double Util::perimeter(const CvSeq* points) {
  if (points == nullptr || points->total < 2) {
    return 0.0;
  }
  double length = 0.0;
  const auto pointAt = [points](int index) { return *CV_GET_SEQ_ELEM(CvPoint, points, index); };
  CvPoint previous = pointAt(0);
  // One step further than the last point: back to the first.
  for (int i = 1; i <= points->total; ++i) {
    const CvPoint current = pointAt(i % points->total);
    const double dx = current.x - previous.x;
    const double dy = current.y - previous.y;
    length += std::sqrt(dx * dx + dy * dy);
    previous = current;
  }
  return length;
}

void Util::printBbox(const BoundingBox3D& box) {
  Diagnostics::print("bottom: ({:f}, {:f}, {:f}),\n", box.b3, box.b4, box.b5);
  Diagnostics::print("top: ({:f}, {:f}, {:f}),\n", box.b0, box.b1, box.b2);
  Diagnostics::print("width and height: {:f} {:f}\n", widthOf(box), heightOf(box));
}

void Util::printBbox(const cv::Rect& box) {
  Diagnostics::print("x {}, y {}\n", box.x, box.y);
  Diagnostics::print("width {}, height {}\n", box.width, box.height);
}

void Util::printI(int number) {
  Diagnostics::print("{} ", number);
}
