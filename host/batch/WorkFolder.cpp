#include "host/batch/WorkFolder.h"

#include "host/base/OutputPlace.h"

#include <QSysInfo>
#include <QUuid>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

const char* const lockEnding = ".lock";

std::string lockOf(const std::string& path) {
  return path + lockEnding;
}

/// What stands in the names of all that is made on this machine.
std::string markOfMachine() {
  return "@" + QSysInfo::machineHostName().toStdString() + ".";
}

/// The lock of a folder whose maker on this machine has died; not open while he lives. Other
/// containers may have the machine's name and processes of their own, but the lock is the system's.
FileDescriptor lockOfDead(const std::string& path) {
  FileDescriptor lock(::open(lockOf(path).c_str(), O_RDWR | O_CLOEXEC));
  const bool isDead =
      fs::path(path).filename().string().find(markOfMachine()) != std::string::npos &&
      lock.isOpen() && ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0;
  return isDead ? std::move(lock) : FileDescriptor();
}

bool isOld(const std::string& path) {
  constexpr std::chrono::hours longest(48);
  std::error_code gone;
  fs::file_time_type latest = fs::last_write_time(path, gone);
  for (fs::recursive_directory_iterator item(path, gone), end; !gone && item != end;
       item.increment(gone)) {
    latest = std::max(latest, item->last_write_time(gone));
  }
  return !gone && latest + longest < fs::file_time_type::clock::now();
}

}  // namespace

std::string WorkFolder::newPath(const std::string& parent, const std::string& name) {
  constexpr int keyLength = 16;
  const QString key = QUuid::createUuid().toString(QUuid::Id128).left(keyLength);
  return fs::path(parent) / (name + markOfMachine() + key.toStdString());
}

void WorkFolder::removeLeft(const std::string& parent) {
  std::error_code gone;  // by somebody who removes the same
  for (fs::directory_iterator item(parent, gone), end; !gone && item != end; item.increment(gone)) {
    std::string path = item->path();
    if (path.ends_with(lockEnding)) {
      path.erase(path.size() - std::string(lockEnding).size());
    }
    const FileDescriptor held = lockOfDead(path);
    if (held.isOpen() || isOld(fs::exists(path, gone) ? path : item->path().string())) {
      remove(path);
    }
  }
}

void WorkFolder::remove(const std::string& path) {
  std::error_code gone;
  fs::remove_all(path, gone);
  fs::remove(lockOf(path), gone);
}

WorkFolder::WorkFolder(const std::string& path) {
  makeFolder(fs::path(path).parent_path());
  // Where it cannot be locked, only its age tells that it was left.
  m_lock = FileDescriptor(::open(lockOf(path).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  ::flock(m_lock.get(), LOCK_EX);
  makeFolder(path);
}

}  // namespace grouptracker
