#pragma once

#include <kel/kelDataContext.h>

#include <QSharedPointer>

/// Finds the part of the ground that the scene's zones cover.
class ContextReader {
 public:
  static constexpr double noMinimum = 2147483648.0;   ///< a lower bound when there is no zone
  static constexpr double noMaximum = -2147483648.0;  ///< an upper bound when there is no zone

  ContextReader() = default;
  virtual ~ContextReader() = default;

  /// Sets the bounds, in metres, of the vertices of all zones that are polygons or rectangles.
  /// Without any the bounds are `noMinimum` and `noMaximum`; a null context has none.
  static void read(float& minX, float& maxX, float& minY, float& maxY,
                   const QSharedPointer<kelDataContext>& context);
};
