#include "host/camera/TsaiCalibration.h"

#include "host/base/InputError.h"
#include "host/base/XmlElements.h"

#include <cmath>
#include <limits>

namespace grouptracker {

namespace {

constexpr double millimetres = 1000.0;  // in a metre

cv::Matx33d turn(double angle, int from, int to) {
  cv::Matx33d matrix = cv::Matx33d::eye();
  matrix(from, from) = matrix(to, to) = std::cos(angle);
  matrix(to, from) = std::sin(angle);
  matrix(from, to) = -std::sin(angle);
  return matrix;
}

cv::Matx33d rotationOfAngles(const cv::Vec3d& angles) {
  constexpr int x = 0;
  constexpr int y = 1;
  constexpr int z = 2;
  return turn(angles[z], x, y) * turn(angles[y], z, x) * turn(angles[x], y, z);
}

/// The distorted radius that the lens makes of an undistorted one: Newton's method on
/// r + kappa r³ = undistorted. Not a number beyond the rim of a lens that bends inwards.
double distort(double undistorted, double kappa) {
  constexpr int steps = 50;
  constexpr double enough = 1e-12;  // mm
  double radius = undistorted;
  for (int i = 0; i < steps; ++i) {
    const double excess = radius + kappa * radius * radius * radius - undistorted;
    if (std::abs(excess) < enough) {
      return radius;
    }
    radius -= excess / (1.0 + 3.0 * kappa * radius * radius);
  }
  return std::numeric_limits<double>::quiet_NaN();
}

double nonZero(const XmlElements& xml, const char* attribute) {
  const double number = xml.number(attribute);
  if (number == 0.0) {
    throw ValueProblem(std::string(attribute) + " must not be 0");
  }
  return number;
}

/// The elements of which each must be there.
enum Element : unsigned { none = 0, geometry = 1, intrinsic = 2, extrinsic = 4, all = 7 };

unsigned takeElement(const XmlElements& xml, TsaiCamera& camera) {
  if (xml.starts("Geometry")) {
    camera.dpx = nonZero(xml, "dpx");
    camera.dpy = nonZero(xml, "dpy");
    return geometry;
  }
  if (xml.starts("Intrinsic")) {
    camera.focal = nonZero(xml, "focal");
    camera.kappa1 = xml.number("kappa1");
    camera.cx = xml.number("cx");
    camera.cy = xml.number("cy");
    camera.sx = nonZero(xml, "sx");
    return intrinsic;
  }
  if (xml.starts("Extrinsic")) {
    camera.translation = {xml.number("tx"), xml.number("ty"), xml.number("tz")};
    camera.rotation = {xml.number("rx"), xml.number("ry"), xml.number("rz")};
    return extrinsic;
  }
  return none;
}

}  // namespace

TsaiCalibration::TsaiCalibration(const TsaiCamera& camera)
    : m_camera(camera),
      m_rotation(rotationOfAngles(camera.rotation)),
      m_position(-(m_rotation.t() * camera.translation) * (1.0 / millimetres)) {}

cv::Point3d TsaiCalibration::imageToWorld(const cv::Point2d& imagePoint, double height) const {
  const double x = (imagePoint.x - m_camera.cx) * m_camera.dpx / m_camera.sx;
  const double y = (imagePoint.y - m_camera.cy) * m_camera.dpy;
  const double stretch = (1.0 + m_camera.kappa1 * (x * x + y * y)) / m_camera.focal;
  const cv::Vec3d ray = m_rotation.t() * cv::Vec3d(x * stretch, y * stretch, 1.0);
  const double steps = (height - m_position.z) / ray[2];
  return {m_position.x + steps * ray[0], m_position.y + steps * ray[1], height};
}

cv::Point2d TsaiCalibration::worldToImage(const cv::Point3d& scenePoint) const {
  const cv::Vec3d seen =
      m_rotation * (cv::Vec3d(scenePoint.x, scenePoint.y, scenePoint.z) * millimetres) +
      m_camera.translation;
  const cv::Point2d undistorted(m_camera.focal * seen[0] / seen[2],
                                m_camera.focal * seen[1] / seen[2]);
  const double radius = std::hypot(undistorted.x, undistorted.y);
  const double shrink = radius == 0.0 ? 1.0 : distort(radius, m_camera.kappa1) / radius;
  return {m_camera.sx * undistorted.x * shrink / m_camera.dpx + m_camera.cx,
          undistorted.y * shrink / m_camera.dpy + m_camera.cy};
}

std::vector<CalibrationNode> TsaiCalibration::nodes() const {
  const TsaiCamera& c = m_camera;
  return {{"tsai_camera", 1, 7, {c.dpx, c.dpy, c.focal, c.kappa1, c.cx, c.cy, c.sx}},
          {"tsai_rotation", 3, 1, {c.rotation[0], c.rotation[1], c.rotation[2]}},
          {"tsai_translation", 3, 1, {c.translation[0], c.translation[1], c.translation[2]}}};
}

TsaiCamera readTsaiCamera(std::istream& in, const std::string& name) {
  TsaiCamera camera;
  XmlElements xml(in, name);
  unsigned found = none;
  while (xml.next()) {
    try {
      found |= takeElement(xml, camera);
    } catch (const ValueProblem& problem) {
      throw xml.error(problem.what());
    }
  }
  if (found != all) {
    throw xml.error("a camera needs the elements Geometry, Intrinsic and Extrinsic");
  }
  return camera;
}

}  // namespace grouptracker
