#include "host/base/OutputPlace.h"

#include "host/base/FileDescriptor.h"
#include "host/base/Interruption.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace grouptracker {

namespace {

constexpr mode_t readableByAll = 0666;  // less what the user's mask takes away

// PNG, JPEG, TIFF, BMP and PPM.
constexpr std::array<std::string_view, 5> imageBegins{"\x89PNG", "\xff\xd8\xff", "II*", "BM",
                                                      "P6\n"};

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

/// Whether a file holds an image, as its first bytes say: one that the input names, maybe, or
/// anybody's else. What is opened here never becomes one.
bool isImage(const std::string& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  std::array<char, 4> bytes{};
  const ssize_t count = file.isOpen() ? ::read(file.get(), bytes.data(), bytes.size()) : 0;
  const std::string_view begin(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return std::any_of(imageBegins.begin(), imageBegins.end(),
                     [begin](std::string_view known) { return begin.starts_with(known); });
}

const std::string standardInput = "-";
const std::string standardOutput = "standard output";

bool statusOf(const std::string& name, struct stat& status) {
  if (name == standardInput) {
    return ::fstat(STDIN_FILENO, &status) == 0;
  }
  return name == standardOutput ? ::fstat(STDOUT_FILENO, &status) == 0
                                : ::stat(name.c_str(), &status) == 0;
}

bool areSameFile(const std::string& a, const std::string& b) {
  struct stat ofA = {};
  struct stat ofB = {};
  if (statusOf(a, ofA) && statusOf(b, ofB)) {
    return (S_ISREG(ofA.st_mode) || S_ISDIR(ofA.st_mode)) && ofA.st_dev == ofB.st_dev &&
           ofA.st_ino == ofB.st_ino;
  }
  // Neither may exist yet: then they are the same when their names lead to the same place.
  std::error_code ignored;
  return std::filesystem::weakly_canonical(a, ignored) ==
         std::filesystem::weakly_canonical(b, ignored);
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
    if (isImage(path)) {
      throw OutputError(path, "is an image, which no output replaces");
    }
    lockFile(file, path);
    if (old == OldContent::replaced && ::ftruncate(file.get(), 0) != 0) {
      throw OutputError(path, systemProblem("cannot be written"));
    }
  }
  return file;
}

FileDescriptor lockForOthers(const std::string& path) {
  FileDescriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, readableByAll));
  if (file.isOpen() && isRegular(file)) {
    lockFile(file, path);
    return file;
  }
  return FileDescriptor();
}

FileDescriptor openRegularOutput(const std::string& path, OldContent old) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    throw OutputError(path, "is no regular file, so it cannot be replaced");
  }
  return openOutput(path, old);
}

void makeFolder(const std::string& path) {
  std::error_code problem;
  std::filesystem::create_directories(path, problem);
  if (problem) {
    throw OutputError(path, "cannot be made: " + problem.message());
  }
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

void refuseOverwriting(const std::vector<std::string>& outputs,
                       const std::vector<std::string>& inputs) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    std::vector<std::string> others = inputs;
    if (!outputs[i].starts_with("/dev/")) {  // as /dev/stdout, which is meant to be the same
      others.push_back(standardOutput);
    }
    others.insert(others.end(), outputs.begin(), outputs.begin() + static_cast<std::ptrdiff_t>(i));
    for (const std::string& other : others) {
      if (!outputs[i].empty() && !other.empty() && areSameFile(outputs[i], other)) {
        throw OutputError(outputs[i],
                          "would overwrite " + (other == standardInput ? "standard input" : other));
      }
    }
  }
}

}  // namespace grouptracker
