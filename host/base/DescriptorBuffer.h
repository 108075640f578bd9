#pragma once

#include <cstddef>
#include <streambuf>
#include <vector>

namespace grouptracker {

/// Reads an open file, pipe or terminal as the bytes arrive: a read returns what is there instead
/// of waiting for a full buffer, so that a live tracker's line is seen at once. The wish to stop
/// ends a wait with `InputInterrupted`. A failing read throws `std::system_error`. Does not own the
/// descriptor.
class DescriptorBuffer : public std::streambuf {
 public:
  explicit DescriptorBuffer(int descriptor);

 protected:
  int_type underflow() override;

 private:
  void waitForInput() const;

  int m_descriptor;
  std::vector<char> m_bytes;
};

}  // namespace grouptracker
