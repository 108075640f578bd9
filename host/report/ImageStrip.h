#pragma once

#include <QByteArray>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

/// The images of a report: small JPEGs in base64, at most some hundred of them, evenly spread over
/// the frames, so that a report of any length can be opened.
class ImageStrip {
 public:
  void addFrame(std::filesystem::path file, std::string place);

  /// Frames from one image to the next; 0 without images.
  std::size_t every() const;
  /// Loads the images. One that is missing or not readable is an `InputError` at its place.
  std::vector<QByteArray> load() const;

 private:
  struct Frame {
    std::filesystem::path file;
    std::string place;
  };

  std::vector<Frame> m_frames;
  bool m_hasImages = false;
};
