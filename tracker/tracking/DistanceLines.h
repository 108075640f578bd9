#pragma once

#include "tracker/diagnostics/TextBuffer.h"
#include "tracker/tracking/MetaLPO.h"

#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <cstddef>
#include <list>
#include <string_view>
#include <vector>

/// Prints the distances between all mobiles of a frame, in metres on the ground. With n mobiles
/// these are n * n lines, so what depends on one mobile alone is made once, and the text of a
/// distance serves both ways.
class DistanceLines {
 public:
  DistanceLines() = default;
  /// What is kept is but room, so a copy makes its own.
  DistanceLines(const DistanceLines& /*other*/) : DistanceLines() {}
  DistanceLines& operator=(const DistanceLines&) = delete;
  ~DistanceLines() = default;

  void print(const std::list<QSharedPointer<MetaLPO>>& mobiles);

 private:
  using Distance = TextBuffer::Short<20>;  // empty for one beyond every scene

  struct Mobile {
    int ident;
    cv::Point3f center;
    TextBuffer::Short<16> asSecond;
  };

  void takeIn(const std::list<QSharedPointer<MetaLPO>>& mobiles);
  void printFrom(std::size_t first);
  double metres(std::size_t a, std::size_t b) const;
  const Distance& measure(std::size_t a, std::size_t b);
  template <typename... Parts>
  std::string_view textOf(const Parts&... parts);

  // Kept between frames for their room.
  std::vector<Mobile> m_mobiles;
  std::vector<Distance> m_distances;
  TextBuffer m_text;
};
