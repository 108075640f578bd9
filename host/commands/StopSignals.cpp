#include "host/commands/StopSignals.h"

#include "host/base/Interruption.h"
#include "host/base/OutputFile.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/time.h>
#include <unistd.h>
#include <utility>

namespace grouptracker {

namespace {

const std::array<int, 3> stopSignals{SIGINT, SIGTERM, SIGHUP};

// What a signal handler may touch.
volatile std::sig_atomic_t stopSignal = 0;
/// A file that may be full.
struct Watched {
  volatile std::sig_atomic_t descriptor = -1;
  volatile std::sig_atomic_t fullLooks = 0;  ///< in a row
};
std::array<Watched, 2> watched;
std::array<int, 2> wakePipe{-1, -1};
int nowhere = -1;  // /dev/null

/// Has the watched files looked at again and again, or no more.
void watchOutputs(bool isOn) {
  constexpr int pause = 250'000;  // microseconds
  itimerval timer = {};
  timer.it_value.tv_usec = isOn ? pause : 0;
  timer.it_interval = timer.it_value;
  ::setitimer(ITIMER_REAL, &timer, nullptr);
}

void noteStop(int signal) {
  const int savedError = errno;
  stopSignal = signal;
  watchOutputs(true);
  [[maybe_unused]] const ssize_t ignored = ::write(wakePipe[1], "", 1);
  errno = savedError;
}

/// A write that waits is begun again behind the signal and then leads nowhere. Somebody who reads
/// slowly has a second for the rest, which is that of one frame.
void letGoOfFullOutputs(int /*signal*/) {
  constexpr int mostLooks = 4;
  const int savedError = errno;
  for (Watched& file : watched) {
    pollfd output{file.descriptor, POLLOUT, 0};
    file.fullLooks = ::poll(&output, 1, 0) == 0 ? file.fullLooks + 1 : 0;
    if (file.fullLooks >= mostLooks && file.descriptor >= 0) {
      ::dup2(nowhere, file.descriptor);
    }
  }
  errno = savedError;
}

void noteReopening(int /*signal*/) {
  reopen_wish::note();
}

void install(int signal, void (*handler)(int), int flags) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

StopSignals::StopSignals(Hangup hangup) {
  stopSignal = 0;
  watched[0].descriptor = STDOUT_FILENO;
  letGoWhenFull(-1);
  nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  install(SIGALRM, letGoOfFullOutputs, SA_RESTART);
  if (::pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    wakePipe = {-1, -1};  // a stop is then seen after the next input only
  }
  stop_wish::setDescriptor(wakePipe[0]);
  for (const int signal : stopSignals) {
    // With SA_RESETHAND the second signal does what it usually does.
    install(signal, noteStop, SA_RESTART | static_cast<int>(SA_RESETHAND));
  }
  if (hangup == Hangup::reopens) {
    install(SIGHUP, noteReopening, SA_RESTART);
  }
  install(SIGPIPE, SIG_IGN, 0);  // a pipe that nobody reads is a write that fails
}

StopSignals::~StopSignals() {
  for (const int signal : stopSignals) {
    install(signal, SIG_DFL, 0);
  }
  watchOutputs(false);
  install(SIGALRM, SIG_IGN, 0);  // one may be on its way
  stop_wish::setDescriptor(-1);
  for (int* const descriptor : {&nowhere, &wakePipe[0], &wakePipe[1]}) {
    ::close(std::exchange(*descriptor, -1));
  }
}

void StopSignals::letGoWhenFull(int descriptor) {
  watched[1].descriptor = descriptor;
}

bool StopSignals::stopRequested() const {
  return stopSignal != 0;
}

std::string StopSignals::signalName() const {
  const char* const name = stopRequested() ? ::sigabbrev_np(stopSignal) : nullptr;
  return name != nullptr ? std::string("SIG") + name : std::string();
}

int StopSignals::exitStatus() {
  constexpr int stopped = 128;  // and the number of the signal
  return stopSignal == 0 ? 0 : stopped + stopSignal;
}

}  // namespace grouptracker
