#include "tests/support/base/Images.h"

#include <fstream>

bool writeImage(const std::filesystem::path& file, const cv::Mat& pixels) {
  const std::vector<uchar> bytes = ImageCodec::loaded().encode(file.extension().string(), pixels);
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  return out.good();
}
