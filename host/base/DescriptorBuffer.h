#pragma once

#include <cstddef>
#include <streambuf>
#include <vector>

namespace grouptracker {

/// Reads an open file, pipe or terminal as the bytes arrive: a read returns what is there instead
/// of waiting for a full buffer, so that a live tracker's line is seen at once. While it waits, a
/// byte on the wake descriptor ends the wait with `InputInterrupted`. A failing read throws
/// `std::system_error`. Owns neither descriptor.
class DescriptorBuffer : public std::streambuf {
 public:
  /// `wakeDescriptor` is -1 when nothing shall interrupt the wait.
  DescriptorBuffer(int descriptor, int wakeDescriptor);

 protected:
  int_type underflow() override;

 private:
  void waitForInput() const;

  int m_descriptor;
  int m_wakeDescriptor;
  std::vector<char> m_bytes;
};

}  // namespace grouptracker
