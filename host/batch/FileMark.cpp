#include "host/batch/FileMark.h"

#include <QCryptographicHash>
#include <QFile>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <system_error>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

std::int64_t timeOf(const struct stat& status) {
  constexpr std::int64_t second = 1'000'000'000;
  return status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec;
}

std::vector<std::string> filesBelow(const std::string& folder) {
  std::vector<std::string> files;
  std::error_code unreadable;
  for (fs::recursive_directory_iterator item(folder, unreadable), end; item != end;
       item.increment(unreadable)) {
    files.push_back(item->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

FileMark markOfFolder(const std::string& folder) {
  FileMark mark{folder, 0, 0, ""};
  QCryptographicHash hash(QCryptographicHash::Sha1);
  for (const std::string& file : filesBelow(folder)) {
    struct stat status = {};
    if (::stat(file.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) {
      continue;
    }
    mark.size += status.st_size;
    mark.modified = std::max(mark.modified, timeOf(status));
    const std::string line =
        fmt::format("{} {} {}\n", fs::path(file).lexically_relative(folder).string(),
                    status.st_size, timeOf(status));
    hash.addData(line.data(), static_cast<int>(line.size()));
  }
  mark.hash = hash.result().toHex().toStdString();
  return mark;
}

/// Of a file without its hash, which takes longest.
std::optional<FileMark> quickMarkOf(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) {
    return std::nullopt;
  }
  return S_ISDIR(status.st_mode) ? markOfFolder(path)
                                 : FileMark{path, status.st_size, timeOf(status), ""};
}

}  // namespace

std::string hashOfFile(const std::string& path) {
  QFile file(QFile::decodeName(path.c_str()));
  QCryptographicHash hash(QCryptographicHash::Sha1);
  std::error_code unreadable;  // and a pipe would wait for somebody
  const bool isRead = fs::is_regular_file(path, unreadable) && file.open(QIODevice::ReadOnly) &&
                      hash.addData(&file);
  return isRead ? hash.result().toHex().toStdString() : std::string();
}

FileMark FileMark::of(const std::string& path) {
  FileMark mark = quickMarkOf(path).value_or(FileMark{path, -1, 0, ""});
  mark.hash = mark.hash.empty() ? hashOfFile(path) : mark.hash;
  return mark;
}

bool FileMark::holdsIn(const std::string& folder) const {
  const std::string place = fs::path(folder) / path;
  const auto now = quickMarkOf(place);
  if (!now) {
    return size < 0;
  }
  if (now->size != size) {
    return false;
  }
  if (!now->hash.empty()) {
    return now->hash == hash;
  }
  return now->modified == modified || hashOfFile(place) == hash;
}

}  // namespace grouptracker
