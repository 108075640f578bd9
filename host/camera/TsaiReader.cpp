#include "host/camera/TsaiReader.h"

#include "host/base/InputError.h"
#include "host/base/XmlElements.h"

#include <stdexcept>

namespace grouptracker {

namespace {

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
