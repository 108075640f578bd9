#pragma once

#include <opencv2/core.hpp>

#include <memory>
#include <string>

namespace grouptracker {

/// A film file, of the form that the ending of its name says (.mp4, .mkv, .avi). What was added can
/// be played up to the last second, however the program ends: the file is written in pieces of a
/// second that need nothing behind them. Opened and written as an `OutputFile`, so a full disk is
/// an `OutputError`, behind which everything before still plays.
class Film {
 public:
  /// Tries the place at once. `rate` is in pictures per second.
  Film(const std::string& path, double rate);
  ~Film();
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
  class Encoder;

  std::unique_ptr<Encoder> m_encoder;
};

}  // namespace grouptracker
