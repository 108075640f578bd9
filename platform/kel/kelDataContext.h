#pragma once

#include <opencv2/core/types.hpp>

#include <list>
#include <string>
#include <utility>

/// One element of the scene's description, such as a zone on the ground.
struct ContextElement {
  std::string kind;                 ///< "zone", "wall", ...
  std::string shape;                ///< "polygon", "rectangle", ...
  std::list<cv::Point3d> vertices;  ///< metres
};

/// What is known about the scene beforehand.
class kelDataContext {
 public:
  kelDataContext() = default;
  explicit kelDataContext(std::list<ContextElement> elements) : m_elements(std::move(elements)) {}

  /// All elements, in the order of the description.
  const std::list<ContextElement>& getContext() const { return m_elements; }

 private:
  std::list<ContextElement> m_elements;
};
