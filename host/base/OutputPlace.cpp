#include "host/base/OutputPlace.h"

#include "host/base/Interruption.h"
#include "host/base/OutputError.h"
#include "host/base/StopWish.h"
#include "host/base/SystemProblem.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace grouptracker {

namespace {

constexpr mode_t readableByAll = 0666;  // less what the user's mask takes away

bool isPipe(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

/// Opens without waiting, again and again: a pipe without reader cannot be opened for writing, and
/// a wait within open() would not see the wish to stop.
FileDescriptor openWhenRead(const std::string& path, int flags) {
  constexpr int pause = 20;  // ms
  for (;;) {
    FileDescriptor file(::open(path.c_str(), flags | O_NONBLOCK, readableByAll));
    if (file.isOpen() || errno != ENXIO || !isPipe(path)) {
      return file;
    }
    stop_wish::waitFor(-1, 0, pause);
    if (stop_wish::isThere()) {
      throw OutputInterrupted();
    }
  }
}

void lockFile(const FileDescriptor& file, const std::string& path) {
  // Where the file system knows no locks there are none.
  if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    throw OutputError(path, "is being written by another run");
  }
}

}  // namespace

FileDescriptor openOutput(const std::string& path, OldContent old) {
  const int append = old == OldContent::kept ? O_APPEND : 0;
  // Standard output under its name, which gives it a place of its own in a file.
  FileDescriptor file =
      openWhenRead(path == "-" ? "/dev/stdout" : path, O_WRONLY | O_CREAT | O_CLOEXEC | append);
  if (!file.isOpen()) {
    throw OutputError(path, systemProblem("cannot be written"));
  }
  ::fcntl(file.get(), F_SETFL, ::fcntl(file.get(), F_GETFL) & ~O_NONBLOCK);
  if (isRegular(file)) {
    lockFile(file, path);
    if (old == OldContent::replaced && ::ftruncate(file.get(), 0) != 0) {
      throw OutputError(path, systemProblem("cannot be written"));
    }
  }
  return file;
}

FileDescriptor openRegularOutput(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    throw OutputError(path, "is no regular file, so it cannot be replaced");
  }
  return openOutput(path);
}

FileDescriptor lockFolder(const std::string& path) {
  FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder.isOpen()) {
    throw OutputError(path, systemProblem("cannot be written"));
  }
  lockFile(folder, path);
  return folder;
}

bool hasReader(int descriptor) {
  pollfd writer{descriptor, POLLOUT, 0};
  return ::poll(&writer, 1, 0) < 1 || (writer.revents & POLLERR) == 0;
}

bool isRegular(const FileDescriptor& file) {
  struct stat status = {};
  return ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace grouptracker
