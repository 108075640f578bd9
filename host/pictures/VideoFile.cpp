#include "host/pictures/VideoFile.h"

#include "host/base/FileDescriptor.h"
#include "host/base/OutputPlace.h"
#include "tracker/images/ImageCodec.h"

#include <QFile>
#include <QSaveFile>
#include <fmt/format.h>
#include <opencv2/imgcodecs.hpp>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

namespace grouptracker {

namespace {

void writeImage(const std::string& path, const cv::Mat& picture) {
  const std::vector<uchar> bytes =
      ImageCodec::loaded().encode(".png", picture, {cv::IMWRITE_PNG_COMPRESSION, 1});
  QSaveFile file(QFile::decodeName(path.c_str()));
  const bool isOpen = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
  const auto size = static_cast<qint64>(bytes.size());
  if (isOpen && file.write(reinterpret_cast<const char*>(bytes.data()), size) != size) {
    throw OutputError(path, systemProblem("cannot be written"));  // of a part Qt knows no reason
  }
  if (!isOpen || !file.commit()) {
    throw OutputError(path, "cannot be written: " + file.errorString().toStdString());
  }
}

}  // namespace

VideoFile::VideoFile(const std::string& path, double rate) : m_path(path) {
  if (Film::isNamedBy(path)) {
    m_film = std::make_unique<Film>(path, rate);
  } else {
    openFolder();
  }
}

void VideoFile::openFolder() {
  if (std::filesystem::path(m_path).has_extension() && !std::filesystem::is_directory(m_path)) {
    throw OutputError(m_path,
                      "cannot be written: a film ends in .mp4, .mkv or .avi, a new folder "
                      "has no ending");
  }
  std::error_code failure;
  std::filesystem::create_directories(m_path, failure);
  if (failure || !std::filesystem::is_directory(m_path)) {
    throw OutputError(
        m_path, "cannot be written: " + (failure ? failure.message() : std::strerror(ENOTDIR)));
  }
  m_folder = lockFolder(m_path);
}

std::string VideoFile::imageName(std::int64_t number) {
  return fmt::format("{:06}.png", number);
}

void VideoFile::add(const cv::Mat& picture, std::int64_t number) {
  if (m_film) {
    m_film->add(picture);
  } else {
    writeImage(std::filesystem::path(m_path) / imageName(number), picture);
  }
}

void VideoFile::finish() {
  if (m_film) {
    m_film->finish();
  }
}

}  // namespace grouptracker
