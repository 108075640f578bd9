#pragma once

#include <opencv2/core.hpp>

#include <string>
#include <vector>

/// Reads and writes images in the forms that OpenCV knows; colours are blue, green, red. OpenCV's
/// codecs stand on 120 libraries, so they are bound with the first image only.
class ImageCodec {
 public:
  virtual ~ImageCodec() = default;

  /// The codec of this process. Throws `std::runtime_error` when it cannot be loaded.
  static const ImageCodec& loaded();

  /// The image as the bytes of a file whose name ends so, such as ".png"; `settings` are OpenCV's
  /// pairs of a flag and a value. Throws `cv::Exception` for an ending of which it knows nothing.
  virtual std::vector<uchar> encode(const std::string& ending, const cv::Mat& pixels,
                                    const std::vector<int>& settings = {}) const = 0;
  /// The image in colour; empty when the bytes are none.
  virtual cv::Mat decode(const std::vector<uchar>& bytes) const = 0;
  /// The image of a file in colour; empty when it is none.
  virtual cv::Mat read(const std::string& file) const = 0;
};
