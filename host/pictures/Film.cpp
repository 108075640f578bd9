#include "host/pictures/Film.h"

#include "host/base/OutputPlace.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace grouptracker {

namespace {

const std::array<const char*, 3> endings{".mp4", ".mkv", ".avi"};

/// What goes wrong in making a film is told as what is wrong with its file.
template <typename Step>
void tryStep(const std::string& path, const Step& step) {
  try {
    step();
  } catch (const FilmProblem& problem) {
    throw OutputError(path, std::string("cannot be written: ") + problem.what());
  }
}

const VideoLibrary& videoLibrary(const std::string& path) {
  try {
    return VideoLibrary::loaded();
  } catch (const std::runtime_error& problem) {
    throw OutputError(path, std::string("cannot be written: ") + problem.what());
  }
}

}  // namespace

Film::Film(const std::string& path, double rate)
    : m_path(path),
      m_file(path, "", WhenMoved::followed),
      m_encoding(videoLibrary(path).encode(*this, path, rate)) {}

bool Film::isNamedBy(const std::string& path) {
  const auto ending = std::filesystem::path(path).extension();
  return std::any_of(endings.begin(), endings.end(),
                     [&](const char* known) { return ending == known; });
}

void Film::add(const cv::Mat& picture) {
  tryStep(m_path, [&] { m_encoding->add(picture); });
}

void Film::finish() {
  tryStep(m_path, [this] { m_encoding->finish(); });
}

}  // namespace grouptracker
