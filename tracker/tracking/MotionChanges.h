#pragma once

#include <array>
#include <cstddef>

/// Tells whether the speeds and directions of the nodes of a frame may have changed. A node's
/// motion is fixed when it is taken in; it changes only when the node loses its best father, which
/// happens to few frames at a time. Whoever keeps something computed from a frame's motions keeps
/// the version with it and computes anew when the version has moved on.
///
/// The nodes of one tracker share one. Frames share slots: a change may look like one of another
/// frame, never the other way round.
class MotionChanges {
 public:
  /// Notes that a node of the frame lost its best father.
  void note(unsigned int frame) { m_versions[frame % slotCount] = ++m_latest; }
  /// Changes whenever something was noted for the frame.
  unsigned int version(unsigned int frame) const { return m_versions[frame % slotCount]; }
  /// Changes whenever something was noted for any frame.
  unsigned int latest() const { return m_latest; }

 private:
  static constexpr std::size_t slotCount = 1024;

  std::array<unsigned int, slotCount> m_versions{};
  unsigned int m_latest = 0;
};
