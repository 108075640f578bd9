#include "host/pictures/VideoFile.h"

#include "host/base/OutputError.h"
#include "host/base/OutputFile.h"

#include <fmt/format.h>
#include <opencv2/imgcodecs.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

namespace grouptracker {

namespace {

/// A kind of film: an ending and the codecs that may stand in it, from the one that every player
/// and browser knows to the one that is always there.
struct FilmKind {
  const char* ending;
  std::vector<const char*> codecs;
};

const std::array<FilmKind, 3> filmKinds{{
    {".mp4", {"avc1", "mp4v"}},
    {".mkv", {"avc1", "mp4v", "MJPG"}},
    {".avi", {"avc1", "mp4v", "MJPG"}},
}};

/// Null for a folder.
const FilmKind* kindOf(const std::filesystem::path& path) {
  const auto* const kind = std::find_if(filmKinds.begin(), filmKinds.end(), [&](const auto& known) {
    return path.extension() == known.ending;
  });
  return kind == filmKinds.end() ? nullptr : kind;
}

}  // namespace

VideoFile::VideoFile(const std::string& path, double rate)
    : m_path(path), m_rate(rate), m_isFilm(kindOf(path) != nullptr) {
  if (m_isFilm) {
    const OutputFile attempt(path);
    return;
  }
  if (!std::filesystem::path(path).extension().empty() && !std::filesystem::is_directory(path)) {
    fail("a film ends in .mp4, .mkv or .avi, a new folder has no ending");
  }
  std::error_code failure;
  std::filesystem::create_directories(path, failure);
  if (failure || !std::filesystem::is_directory(path)) {
    fail(failure ? failure.message() : std::strerror(ENOTDIR));
  }
}

std::string VideoFile::imageName(std::int64_t number) {
  return fmt::format("{:06}.png", number);
}

void VideoFile::add(const cv::Mat& picture, std::int64_t number) {
  if (m_isFilm) {
    if (!m_film.isOpened()) {
      open(picture.size());
    }
    m_film.write(picture);
    return;
  }
  const auto file = std::filesystem::path(m_path) / imageName(number);
  bool isWritten = false;
  try {
    isWritten = cv::imwrite(file.string(), picture, {cv::IMWRITE_PNG_COMPRESSION, 1});
  } catch (const cv::Exception&) {
    isWritten = false;
  }
  if (!isWritten) {
    throw OutputError(file.string(), "cannot be written");
  }
}

void VideoFile::open(cv::Size size) {
  for (const char* codec : kindOf(m_path)->codecs) {
    const int fourcc = cv::VideoWriter::fourcc(codec[0], codec[1], codec[2], codec[3]);
    if (m_film.open(m_path, cv::CAP_FFMPEG, fourcc, m_rate, size)) {
      return;
    }
  }
  fail("no codec for it is installed");
}

void VideoFile::finish() {
  const bool wasOpened = m_film.isOpened();
  m_film.release();
  std::error_code failure;
  if (wasOpened && std::filesystem::file_size(m_path, failure) == 0 && !failure) {
    fail(std::strerror(ENOSPC));
  }
}

void VideoFile::fail(const std::string& reason) const {
  throw OutputError(m_path, "cannot be written: " + reason);
}

}  // namespace grouptracker
