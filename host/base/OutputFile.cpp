#include "host/base/OutputFile.h"

#include "host/base/Interruption.h"
#include "host/base/OutputError.h"
#include "host/base/SystemProblem.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace grouptracker {

namespace {

constexpr mode_t readableByAll = 0666;  // less what the user's mask takes away

/// Standard output under its name, which gives it a place of its own in a file.
const char* placeOf(const std::string& path) {
  return path == "-" ? "/dev/stdout" : path.c_str();
}

}  // namespace

OutputFile::OutputFile(const std::string& path)
    : m_path(path),
      m_file(::open(placeOf(path), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, readableByAll)) {
  if (!m_file.isOpen()) {
    throw OutputError(path, systemProblem("cannot be written"));
  }
}

void OutputFile::writeLines(std::string_view lines) {
  std::string_view rest = lines;
  while (!rest.empty()) {
    const ssize_t count = ::write(m_file.get(), rest.data(), rest.size());
    if (count < 0 && errno != EINTR) {
      fail(errno);
    }
    rest.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
  }
  m_wholeLines += static_cast<off_t>(lines.size());
}

void OutputFile::fail(int error) {
  // Only a regular file can be cut; of a pipe or a device nothing can be taken back.
  [[maybe_unused]] const int ignored = ::ftruncate(m_file.get(), m_wholeLines);
  if (error == EPIPE) {
    throw ClosedPipe();
  }
  throw OutputError(m_path, systemProblem("cannot be written", error));
}

}  // namespace grouptracker
