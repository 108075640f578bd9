#include "host/base/OutputFile.h"

#include "host/base/FileDescriptor.h"
#include "host/base/Interruption.h"
#include "host/base/OutputPlace.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace grouptracker {

namespace {

std::atomic<unsigned> reopenWishes = 0;
static_assert(std::atomic<unsigned>::is_always_lock_free, "a signal's handler notes it");

}  // namespace

void reopen_wish::note() {
  ++reopenWishes;
}

unsigned reopen_wish::count() {
  return reopenWishes;
}

OutputFile::OutputFile(const std::string& path, const std::string& header, WhenMoved whenMoved)
    : m_path(path),
      m_header(header),
      m_reopened(reopen_wish::count()),
      m_file(openOutput(path)),
      m_isRegular(isRegular(m_file)),
      m_canMove(m_isRegular && path != "-" && !path.starts_with("/dev/") &&
                whenMoved == WhenMoved::begunAnew) {
  if (!m_isRegular) {
    ::fcntl(m_file.get(), F_SETFL, ::fcntl(m_file.get(), F_GETFL) | O_NONBLOCK);
  }
  write(m_header);
}

void OutputFile::writeLines(std::string_view lines) {
  if (m_canMove && m_reopened != reopen_wish::count()) {
    reopen();
  }
  write(lines);
}

void OutputFile::reopen() {
  m_reopened = reopen_wish::count();
  if (wasMoved()) {
    m_file = openOutput(m_path);
    m_wholeLines = 0;
    write(m_header);
  }
}

bool OutputFile::wasMoved() const {
  struct stat ours = {};
  struct stat there = {};
  return ::fstat(m_file.get(), &ours) == 0 &&
         (::stat(m_path.c_str(), &there) != 0 || there.st_dev != ours.st_dev ||
          there.st_ino != ours.st_ino);
}

void OutputFile::write(std::string_view lines) {
  std::string_view rest = lines;
  while (!rest.empty()) {
    const ssize_t count = ::write(m_file.get(), rest.data(), rest.size());
    if (count < 0 && errno == EAGAIN) {
      waitForReader();
    } else if (count < 0 && errno != EINTR) {
      fail(errno);
    }
    rest.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
  }
  m_wholeLines += static_cast<off_t>(lines.size());
}

void OutputFile::rewrite(std::int64_t at, std::string_view bytes) {
  if (::pwrite(m_file.get(), bytes.data(), bytes.size(), at) !=
      static_cast<ssize_t>(bytes.size())) {
    fail(errno);
  }
}

// A run that is asked to stop still writes its last lines, but not to somebody who reads none.
void OutputFile::waitForReader() const {
  constexpr int patience = 1000;  // ms
  if (stop_wish::waitFor(m_file.get(), POLLOUT)) {
    return;
  }
  pollfd reader{m_file.get(), POLLOUT, 0};
  if (::poll(&reader, 1, patience) != 1) {
    throw OutputInterrupted();
  }
}

void OutputFile::fail(int error) {
  // Only a regular file can be cut; of a pipe or a device nothing can be taken back.
  [[maybe_unused]] const int ignored = ::ftruncate(m_file.get(), m_wholeLines);
  if (error == EPIPE) {
    throw ClosedPipe(m_path);
  }
  throw OutputError(m_path, systemProblem("cannot be written", error));
}

}  // namespace grouptracker
