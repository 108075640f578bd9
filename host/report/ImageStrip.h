#pragma once

#include "host/people/InputFrame.h"
#include "host/report/ReportBody.h"
#include "host/run/RunStep.h"

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
  /// `persons` are those in view with their boxes in the image. An image that is in no file of its
  /// own, but in a video, is made small at once, and of more than some hundred of them only every
  /// second, fourth and so on is kept.
  void addFrame(const InputFrame& frame, std::vector<RunPerson> persons);

  /// Frames from one image to the next; 0 without images.
  std::size_t every() const;
  /// Loads the images and adds everybody's boxes in them to the numbers of the page. An image that
  /// is missing or not readable is an `InputError` at its place.
  std::vector<QByteArray> load(ReportBody& body) const;

 private:
  struct SmallImage {
    QByteArray jpeg;      ///< in base64
    double factor = 1.0;  ///< from the pixels of the image to its own
  };
  struct Frame {
    std::filesystem::path file;  ///< empty without one
    std::string place;
    std::vector<RunPerson> persons;
    SmallImage small;  ///< empty for one that is still to be read from its file
  };
  /// Boxes in pixels of the small images; those of an image end where `ends` says.
  struct Boxes {
    std::vector<std::uint32_t> persons, ends;
    std::vector<std::int16_t> x, y, widths, heights;
  };

  static SmallImage shrink(const cv::Mat& pixels);
  static void addBoxes(const Frame& frame, double factor, Boxes& boxes);
  void addPicture(const cv::Mat& picture);

  std::vector<Frame> m_frames;
  bool m_hasImages = false;
  std::size_t m_pictures = 0;      ///< kept pictures of a video
  std::size_t m_pictureEvery = 1;  ///< frames from one of them to the next
};

}  // namespace grouptracker
