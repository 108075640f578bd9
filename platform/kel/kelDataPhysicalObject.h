#pragma once

#include <kel/BoundingBox3D.h>

#include <opencv2/core/types.hpp>

#include <string>
#include <utility>

/// What was seen of one mobile at one frame.
class kelDataPhysicalObject {
 public:
  kelDataPhysicalObject() = default;
  kelDataPhysicalObject(std::string type, const cv::Rect& box2D, const BoundingBox3D& box3D,
                        const cv::Point3f& position)
      : m_type(std::move(type)), m_box2D(box2D), m_box3D(box3D), m_position(position) {}

  /// The type as free text: "PERSON", "GROUP_OF_PERSONS", "NOISE", ...
  const std::string& getType() const { return m_type; }
  /// The box in the image, pixels.
  const cv::Rect& getBoundingBox2D() const { return m_box2D; }
  /// The box in the scene, metres.
  const BoundingBox3D& getBoundingBox3D() const { return m_box3D; }
  /// The position in the scene, metres.
  const cv::Point3f& getPosition() const { return m_position; }

 private:
  std::string m_type = "UNKNOWN";
  cv::Rect m_box2D;
  BoundingBox3D m_box3D;
  cv::Point3f m_position;
};
