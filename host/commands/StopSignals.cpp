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

namespace grouptracker {

namespace {

const std::array<int, 3> stopSignals{SIGINT, SIGTERM, SIGHUP};

// What a signal handler may touch.
volatile std::sig_atomic_t stopSignal = 0;
volatile std::sig_atomic_t isLetGo = 0;
std::array<int, 2> wakePipe{-1, -1};
int nowhere = -1;  // /dev/null

/// Every time that it is over the reader of standard output is looked at.
void setPatience(bool hasAny) {
  constexpr int patience = 300'000;  // microseconds
  itimerval timer = {};
  timer.it_value.tv_usec = hasAny ? patience : 0;
  timer.it_interval = timer.it_value;
  ::setitimer(ITIMER_REAL, &timer, nullptr);
}

void noteStop(int signal) {
  const int savedError = errno;
  stopSignal = signal;
  setPatience(true);
  [[maybe_unused]] const ssize_t ignored = ::write(wakePipe[1], "", 1);
  errno = savedError;
}

/// The signal itself ends the wait within a write, which is not restarted.
void letGoOfFullOutput(int /*signal*/) {
  const int savedError = errno;
  pollfd output{STDOUT_FILENO, POLLOUT, 0};
  if (::poll(&output, 1, 0) == 0) {
    isLetGo = 1;
    ::dup2(nowhere, STDOUT_FILENO);
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
  isLetGo = 0;
  nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  install(SIGALRM, letGoOfFullOutput, 0);
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
  setPatience(false);
  install(SIGALRM, SIG_DFL, 0);
  ::close(nowhere);
  stop_wish::setDescriptor(-1);
  ::close(wakePipe[0]);
  ::close(wakePipe[1]);
}

bool StopSignals::stopRequested() const {
  return stopSignal != 0;
}

std::string StopSignals::signalName() const {
  const char* const name = stopRequested() ? ::sigabbrev_np(stopSignal) : nullptr;
  return name != nullptr ? std::string("SIG") + name : std::string();
}

bool StopSignals::outputIsLetGo() {
  return isLetGo != 0;
}

int StopSignals::exitStatus() {
  constexpr int stopped = 128;  // and the number of the signal
  return stopSignal == 0 ? 0 : stopped + stopSignal;
}

}  // namespace grouptracker
