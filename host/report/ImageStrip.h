#pragma once

#include "host/report/ReportBody.h"
#include "host/run/ReportedStep.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace grouptracker {

/// The images of a report: small JPEGs in base64, at most some hundred of them, evenly spread over
/// the frames, so that a report of any length can be opened.
class ImageStrip {
 public:
  /// `people` are those in view with their boxes in the image.
  void addFrame(std::filesystem::path file, std::string place, std::vector<PersonPlace> people);

  /// Frames from one image to the next; 0 without images.
  std::size_t every() const;
  /// Loads the images and adds everybody's boxes in them to the numbers of the page. An image that
  /// is missing or not readable is an `InputError` at its place.
  std::vector<QByteArray> load(ReportBody& body) const;

 private:
  struct Frame {
    std::filesystem::path file;
    std::string place;
    std::vector<PersonPlace> people;
  };
  /// Boxes in pixels of the small images; those of an image end where `ends` says.
  struct Boxes {
    std::vector<std::uint32_t> persons, ends;
    std::vector<std::int16_t> x, y, widths, heights;
  };

  static QByteArray shrink(const Frame& frame, Boxes& boxes);

  std::vector<Frame> m_frames;
  bool m_hasImages = false;
};

}  // namespace grouptracker
