#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

namespace grouptracker {

/// An end that somebody outside wished and that is nobody's fault: the program then ends quietly,
/// with a status that tells who wished it. A run ends its outputs first; everywhere else the
/// program itself takes care of it.
class Interruption : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The reader of a pipe that the program writes to has gone. The text is what was written, as the
/// user calls it.
class ClosedPipe : public Interruption {
 public:
  explicit ClosedPipe(const std::string& file)
      : Interruption(file == "-" ? "standard output" : file) {}
};

/// The program is asked to stop while a read waits for more input.
class InputInterrupted : public Interruption {
 public:
  InputInterrupted() : Interruption("stopped while waiting for input") {}
};

/// The program is asked to stop while it waits for somebody who reads what it writes.
class OutputInterrupted : public Interruption {
 public:
  OutputInterrupted() : Interruption("stopped while waiting for a reader") {}
};

/// The wish of somebody outside that the program stops, for everything that waits: for more input,
/// for the reader of a pipe, for a pipe's other end. There is one for the program, as there is one
/// set of signals; without anybody who catches these, it is never there.
namespace stop_wish {

/// Whoever catches the wish says what becomes readable then; -1 when nobody does any more. Not
/// while anybody waits.
void setDescriptor(int descriptor);
/// -1 without anybody who catches the wish.
int descriptor();
bool isThere();

/// Waits until a file can be read or written, as `events` of poll() say, or until the wish is
/// there: false then. At most `milliseconds` when they are not negative; false when they are over.
bool waitFor(int file, short events, int milliseconds = -1);

}  // namespace stop_wish

/// Lets somebody outside end what takes long and knows nothing of them, such as an interpreter
/// whose user presses Ctrl-C: as long as the object lives, a function is called in its thread now
/// and then, and may throw.
class LongWork {
 public:
  explicit LongWork(std::function<void()> look);
  LongWork(const LongWork&) = delete;
  LongWork& operator=(const LongWork&) = delete;
  ~LongWork();

  /// For each round of a loop that may go on for seconds. Without anybody outside it costs nothing.
  static void step();

 private:
  using Clock = std::chrono::steady_clock;

  std::function<void()> m_look;
  LongWork* m_before;  ///< within which this began, or null
  Clock::time_point m_latest = Clock::now();
};

}  // namespace grouptracker
