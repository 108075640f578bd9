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

namespace grouptracker {

namespace {

const std::array<const char*, 3> filmEndings{".mp4", ".mkv", ".avi"};

/// From the one that every player and browser knows to the one that is always there.
const std::array<const char*, 3> codecs{"avc1", "mp4v", "MJPG"};

bool hasFilmEnding(const std::string& path) {
  const auto ending = std::filesystem::path(path).extension();
  return std::any_of(filmEndings.begin(), filmEndings.end(),
                     [&](const char* known) { return ending == known; });
}

}  // namespace

VideoFile::VideoFile(const std::string& path, double rate)
    : m_path(path), m_rate(rate), m_isFilm(hasFilmEnding(path)) {
  if (m_isFilm) {
    const OutputFile attempt(path);
    return;
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
  for (const char* codec : codecs) {
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
