#pragma once

#include "host/video/VideoLibrary.h"

#include <memory>
#include <string>

namespace grouptracker {

/// Makes a film with the codecs of FFmpeg, the first of H.264, MPEG-4 and JPEG that is there.
class FilmEncoder : public FilmEncoding {
 public:
  FilmEncoder(FilmTarget& target, const std::string& name, double rate);
  ~FilmEncoder() override;

  void add(const cv::Mat& picture) override;
  void finish() override;

 private:
  class Encoding;

  std::unique_ptr<Encoding> m_encoding;
};

}  // namespace grouptracker
