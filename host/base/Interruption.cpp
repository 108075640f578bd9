#include "host/base/Interruption.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

int wakeDescriptor = -1;
thread_local LongWork* workOfThread = nullptr;

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

LongWork::LongWork(std::function<void()> look) : m_look(std::move(look)), m_before(workOfThread) {
  workOfThread = this;
}

LongWork::~LongWork() {
  workOfThread = m_before;
}

void LongWork::step() {
  constexpr std::chrono::milliseconds pause(50);
  LongWork* const work = workOfThread;
  if (work == nullptr || Clock::now() < work->m_latest + pause) {
    return;
  }
  work->m_latest = Clock::now();
  work->m_look();
}

}  // namespace grouptracker
