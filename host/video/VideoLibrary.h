#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace grouptracker {

/// Where the bytes of a film go. What cannot be written is thrown.
class FilmTarget {
 public:
  virtual ~FilmTarget() = default;
  /// Puts bytes behind those before.
  virtual void append(std::string_view bytes) = 0;
  /// Whether something else can be put in the place of what was written.
  virtual bool canBeRewritten() const = 0;
  /// Puts bytes in the place of as many that were written; `at` counts from the start.
  virtual void rewrite(std::int64_t at, std::string_view bytes) = 0;
};

/// Why a film cannot be made.
class FilmProblem : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A film while it is made, in pieces of a second that need nothing behind them. Throws
/// `FilmProblem`, or what the target throws.
class FilmEncoding {
 public:
  virtual ~FilmEncoding() = default;
  /// The next picture, in colour; all have the size of the first. An odd last row or column is left
  /// out, as films have none.
  virtual void add(const cv::Mat& picture) = 0;
  /// Completes the film. Without any picture nothing is written.
  virtual void finish() = 0;
};

/// The pictures of a video file, one after the other.
class VideoPictures {
 public:
  virtual ~VideoPictures() = default;
  /// Pixels, as the head of the file tells.
  virtual cv::Size size() const = 0;
  /// The next picture, in colour and with memory of its own; empty behind the last.
  virtual cv::Mat next() = 0;
};

/// Reads and makes videos. The libraries that do it stand on 200 others, so they are bound when a
/// video is asked for.
class VideoLibrary {
 public:
  virtual ~VideoLibrary() = default;

  /// The library of this process. Throws `std::runtime_error` when it cannot be loaded.
  static const VideoLibrary& loaded();

  /// Null when the file is no readable video.
  virtual std::unique_ptr<VideoPictures> open(const std::string& file) const = 0;
  /// A film of the form that the ending of `name` says; `rate` is in pictures per second. The
  /// target outlives it.
  virtual std::unique_ptr<FilmEncoding> encode(FilmTarget& target, const std::string& name,
                                               double rate) const = 0;
};

}  // namespace grouptracker
