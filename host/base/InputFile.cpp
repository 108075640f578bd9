#include "host/base/InputFile.h"

#include "host/base/InputError.h"
#include "host/base/Interruption.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace grouptracker {

namespace {

// Bytes; several frames of a crowded scene.
constexpr std::size_t bufferSize = std::size_t{256} * 1024;

[[noreturn]] void throwSystemError() {
  throw std::system_error(errno, std::generic_category());
}

FileDescriptor open(const std::string& path) {
  if (path == "-") {
    return FileDescriptor();
  }
  // A pipe that nobody writes yet is waited for when it is read, where a wish to stop is seen.
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen()) {
    throw InputError(path, systemProblem("cannot be opened"));
  }
  return file;
}

}  // namespace

DescriptorBuffer::DescriptorBuffer(int descriptor)
    : m_descriptor(descriptor), m_bytes(bufferSize) {}

DescriptorBuffer::int_type DescriptorBuffer::underflow() {
  for (;;) {
    waitForInput();
    const ssize_t count = ::read(m_descriptor, m_bytes.data(), m_bytes.size());
    if (count > 0) {
      setg(m_bytes.data(), m_bytes.data(), m_bytes.data() + count);
      return traits_type::to_int_type(*gptr());
    }
    if (count == 0) {
      return traits_type::eof();
    }
    if (errno != EINTR && errno != EAGAIN) {
      throwSystemError();
    }
  }
}

void DescriptorBuffer::waitForInput() const {
  if (!stop_wish::waitFor(m_descriptor, POLLIN)) {
    throw InputInterrupted();
  }
}

InputFile::InputFile(const std::string& path)
    : m_file(open(path)),
      m_buffer(m_file.isOpen() ? m_file.get() : STDIN_FILENO),
      m_stream(&m_buffer) {
  m_stream.exceptions(std::ios::badbit);
}

bool InputFile::waitFor(std::chrono::milliseconds most) const {
  const int file = m_file.isOpen() ? m_file.get() : STDIN_FILENO;
  const bool isThere = stop_wish::waitFor(file, POLLIN, static_cast<int>(most.count()));
  if (!isThere && stop_wish::isThere()) {
    throw InputInterrupted();
  }
  return isThere;
}

}  // namespace grouptracker
