#pragma once

#include "host/people/InputFrame.h"
#include "host/report/ReportBody.h"
#include "host/run/RunStep.h"

#include <QByteArray>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace grouptracker {

/// The images of a report: small JPEGs in base64, at most some hundred of them, evenly spread over
/// the frames, and as large and as good as some megabytes for all of them allow, so that a report
/// of any length can be opened and sent.
class ImageStrip {
 public:
  /// `mostBytes` is for all images together, in base64.
  explicit ImageStrip(std::size_t mostBytes = usualBytes) : m_mostBytes(mostBytes) {}

  /// `persons` are those in view with their boxes in the image. An image that is in no file of its
  /// own, but in a video, is made small at once, and of more than some hundred of them only every
  /// second, fourth and so on is kept.
  void addFrame(const InputFrame& frame, std::vector<RunPerson> persons);

  /// Frames from one image to the next; 0 without images.
  std::size_t every() const;

  struct Images {
    std::vector<QByteArray> files;  ///< in base64
    int width = 0;                  ///< pixels at most
  };
  /// Loads the images and adds everybody's boxes in them to the numbers of the page. An image that
  /// is missing or not readable is an `InputError` at its place.
  Images load(ReportBody& body) const;

 private:
  /// A picture in the largest form in which a report may have it, and the width of the original.
  struct SmallImage {
    std::vector<std::uint8_t> jpeg;
    int width = 0;
  };
  /// A form for all images: how wide they are at most, pixels, and their quality as JPEG.
  struct Form {
    int width = 0;
    int quality = 0;
  };
  struct Frame {
    std::filesystem::path file;  ///< empty without one
    InputPlace place;
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
  static Images inForm(const std::vector<SmallImage>& images, const Form& form);
  static std::size_t sizeOf(const Images& images);
  Images fitted(const std::vector<SmallImage>& images) const;
  void addPicture(const cv::Mat& picture);

  static const std::array<Form, 9> forms;
  static constexpr std::size_t usualBytes = 7'000'000;

  std::size_t m_mostBytes;

  std::vector<Frame> m_frames;
  bool m_hasImages = false;
  std::size_t m_pictures = 0;      ///< kept pictures of a video
  std::size_t m_pictureEvery = 1;  ///< frames from one of them to the next
};

}  // namespace grouptracker
