#include "host/base/DescriptorBuffer.h"

#include "host/base/Interruption.h"
#include "host/base/StopWish.h"

#include <cerrno>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace grouptracker {

namespace {

constexpr std::size_t bufferSize =
    std::size_t{256} * 1024;  // bytes; several frames of a crowded scene

[[noreturn]] void throwSystemError() {
  throw std::system_error(errno, std::generic_category());
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

}  // namespace grouptracker
