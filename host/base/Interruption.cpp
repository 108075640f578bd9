#include "host/base/Interruption.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <system_error>

namespace grouptracker {

namespace {

int wakeDescriptor = -1;

}  // namespace

void stop_wish::setDescriptor(int descriptor) {
  wakeDescriptor = descriptor;
}

int stop_wish::descriptor() {
  return wakeDescriptor;
}

bool stop_wish::isThere() {
  pollfd wish{wakeDescriptor, POLLIN, 0};
  return ::poll(&wish, 1, 0) == 1;
}

bool stop_wish::waitFor(int file, short events, int milliseconds) {
  std::array<pollfd, 2> waits{{{file, events, 0}, {wakeDescriptor, POLLIN, 0}}};
  int result = 0;
  do {
    result = ::poll(waits.data(), waits.size(), milliseconds);
  } while (result < 0 && errno == EINTR);
  if (result < 0) {
    throw std::system_error(errno, std::generic_category());
  }
  return result > 0 && (waits[1].revents & POLLIN) == 0;
}

}  // namespace grouptracker
