#include "tracker/images/ImageCodec.h"

#include <opencv2/imgcodecs.hpp>

namespace {

class OpenCvImageCodec : public ImageCodec {
 public:
  std::vector<uchar> encode(const std::string& ending, const cv::Mat& pixels,
                            const std::vector<int>& settings) const override {
    std::vector<uchar> bytes;
    cv::imencode(ending, pixels, bytes, settings);
    return bytes;
  }
  cv::Mat decode(const std::vector<uchar>& bytes) const override {
    return cv::imdecode(bytes, cv::IMREAD_COLOR);
  }
  cv::Mat read(const std::string& file) const override {
    return cv::imread(file, cv::IMREAD_COLOR);
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const void* groupTrackerImageCodec() {
  static const OpenCvImageCodec codec;
  return static_cast<const ImageCodec*>(&codec);
}
