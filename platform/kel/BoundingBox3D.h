#pragma once

/// An axis-parallel box in the scene, in metres, z up: two opposite corners (b0, b1, b2) and
/// (b3, b4, b5). By convention the first corner is the upper one.
struct BoundingBox3D {
  float b0 = 0.0F;
  float b1 = 0.0F;
  float b2 = 0.0F;
  float b3 = 0.0F;
  float b4 = 0.0F;
  float b5 = 0.0F;

  bool operator==(const BoundingBox3D&) const = default;
};
