#pragma once

#include <kel/BoundingBox3D.h>
#include <kel/kelDataLinkedPhysicalObject.h>

#include <QSharedPointer>
#include <opencv2/core/types.hpp>

struct CvSeq;

/// Geometry on boxes and points: centres, motions, norms and distances.
///
/// 3D boxes and points are in metres, z up; of a box (b0, b1, b2) is the top corner and
/// (b3, b4, b5) the bottom corner, |b0 - b3| its width and |b2 - b5| its height. 2D boxes and
/// points are in image pixels, y down. Coordinates are single precision and are subtracted as such;
/// lengths are double. Nothing is reported as an error. The class has no state but the parameters.
class Util {
 public:
  static unsigned int temporalWinSize;  ///< frames of delay before a decision
  static double personWidth;            ///< metres across a standing person, along x
  static double personDepth;            ///< metres through a standing person, along y
  static double personHeight;           ///< metres from sole to crown
  static int cnt;                       ///< free counter for debugging; nothing reads it

  Util() = default;
  virtual ~Util() = default;

  /// `a` brought into [0, m). `m` must be positive, or the call does not end.
  static int hmodulo(int a, int m);
  /// Whether both point to the same mobile.
  static bool equals(const QSharedPointer<kelDataLinkedPhysicalObject>& a,
                     const QSharedPointer<kelDataLinkedPhysicalObject>& b);

  /// The middle of the box's footprint, at z = 0.
  static cv::Point3f baseCenter3D(const BoundingBox3D& box);
  /// How the footprint's middle moved; z is 0.
  static cv::Point3f baseMotionVector3D(const BoundingBox3D& from, const BoundingBox3D& to);
  /// The middle of the box.
  static cv::Point3f getCenter3D(const BoundingBox3D& box);
  /// How the middle moved.
  static cv::Point3f motionVector3D(const BoundingBox3D& from, const BoundingBox3D& to);
  /// How the middle moved, in pixels.
  static cv::Point2f motionVector2D(const cv::Rect& from, const cv::Rect& to);

  /// Length of a vector.
  static double norm3D(const cv::Point3f& vector);
  static double norm2D(const cv::Point2f& vector);

  /// Distance between two footprints' middles, metres; heights play no part.
  static double distance3D(const BoundingBox3D& a, const BoundingBox3D& b);
  /// Distance between two points, metres.
  static double distance3D(const cv::Point3f& a, const cv::Point3f& b);
  static double distance3DPoints(const cv::Point3f& a, const cv::Point3f& b);
  /// Distance between two boxes' middles, pixels.
  static double distance2D(const cv::Rect& a, const cv::Rect& b);
  /// Distance between two mobiles, metres, which takes a box that is too tall for one person apart
  /// into two people above each other in the image; the nearer one counts. Of two boxes of normal
  /// height a wide one gives its own width instead. Taking apart needs the calibration of
  /// `Converter`; without it the boxes are compared as they are.
  static double distance3Dsmart(const BoundingBox3D& boxA, const cv::Rect& rectA,
                                const BoundingBox3D& boxB, const cv::Rect& rectB);

  /// Square pixels that a person of the standard size covers who stands on the ground at the x and
  /// y of `position`. Needs the calibration of `Converter`.
  static double standardPerson2DArea(const cv::Point3f& position);
  /// Length of the closed polygon through a sequence of integer points (CvPoint), pixels. Without
  /// two points it is 0.
  static double perimeter(const CvSeq* points);

  /// Adds a box's corners and extents to the diagnostics.
  static void printBbox(const BoundingBox3D& box);
  static void printBbox(const cv::Rect& box);
  /// Adds a number and a blank to the diagnostics.
  static void printI(int number);
};
