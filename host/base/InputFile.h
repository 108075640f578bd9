#pragma once

#include "host/base/DescriptorBuffer.h"
#include "host/base/FileDescriptor.h"

#include <istream>
#include <string>

namespace grouptracker {

/// An input file, a named pipe, or with the path "-" standard input, as a stream. What goes wrong
/// while opening or reading comes out of the stream operations as an exception: `InputError` for a
/// file that cannot be opened, `std::system_error` for a failing read, `InputInterrupted` when the
/// program is asked to stop.
class InputFile {
 public:
  explicit InputFile(const std::string& path);

  std::istream& stream() { return m_stream; }

 private:
  FileDescriptor m_file;  ///< closed for standard input, which is not owned
  DescriptorBuffer m_buffer;
  std::istream m_stream;
};

}  // namespace grouptracker
