#pragma once

#include <cerrno>
#include <cstring>
#include <string>
#include <unistd.h>
#include <utility>

namespace grouptracker {

/// Owns an open file of the operating system and closes it at the end of its life.
class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor = -1) : m_descriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
  }
  ~FileDescriptor() {
    if (isOpen()) {
      ::close(m_descriptor);
    }
  }

  bool isOpen() const { return m_descriptor >= 0; }
  int get() const { return m_descriptor; }

 private:
  int m_descriptor = -1;  ///< while nothing is open
};

/// What the system refused and why, such as "cannot be written: No space left on device"; `error`
/// is a value of errno.
inline std::string systemProblem(const char* refused, int error = errno) {
  return std::string(refused) + ": " + std::strerror(error);
}

}  // namespace grouptracker
