#pragma once

#include "host/base/OutputFile.h"
#include "host/video/VideoLibrary.h"

#include <opencv2/core.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace grouptracker {

/// A film file, of the form that the ending of its name says (.mp4, .mkv, .avi). What was added can
/// be played up to the last second, however the program ends: the file is written in pieces of a
/// second that need nothing behind them. Opened and written as an `OutputFile`, so a full disk is
/// an `OutputError`, behind which everything before still plays.
class Film : private FilmTarget {
 public:
  /// Tries the place at once. `rate` is in pictures per second.
  Film(const std::string& path, double rate);
  Film(const Film&) = delete;
  Film& operator=(const Film&) = delete;

  /// Whether the ending of a name is that of a film.
  static bool isNamedBy(const std::string& path);

  /// The next picture, in colour; all have the size of the first. An odd last row or column is left
  /// out, as films have none.
  void add(const cv::Mat& picture);
  /// Completes the film. Without any picture the file stays empty.
  void finish();

 private:
  void append(std::string_view bytes) override { m_file.writeLines(bytes); }
  bool canBeRewritten() const override { return m_file.canBeRewritten(); }
  void rewrite(std::int64_t at, std::string_view bytes) override { m_file.rewrite(at, bytes); }

  std::string m_path;
  OutputFile m_file;
  std::unique_ptr<FilmEncoding> m_encoding;
};

}  // namespace grouptracker
