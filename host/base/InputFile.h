#pragma once

#include "host/base/FileDescriptor.h"

#include <chrono>
#include <cstddef>
#include <istream>
#include <streambuf>
#include <string>
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

/// An input file, a named pipe, or with the path "-" standard input, as a stream. What goes wrong
/// while opening or reading comes out of the stream operations as an exception: `InputError` for a
/// file that cannot be opened, `std::system_error` for a failing read, `InputInterrupted` when the
/// program is asked to stop.
class InputFile {
 public:
  explicit InputFile(const std::string& path);

  std::istream& stream() { return m_stream; }
  /// Waits until there is something to read, or the end; false when the time is over before.
  bool waitFor(std::chrono::milliseconds most) const;

 private:
  FileDescriptor m_file;  ///< closed for standard input, which is not owned
  DescriptorBuffer m_buffer;
  std::istream m_stream;
};

}  // namespace grouptracker
