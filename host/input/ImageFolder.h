#pragma once

#include "host/people/FrameSource.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace grouptracker {

/// Gives the frames of an input that names no images the images of a folder: the first frame the
/// first file in sorted order, and so on. An image that the input names itself is kept. A folder
/// that cannot be read or that ends before the input is an `InputError`.
class ImageFolder : public FrameSource {
 public:
  ImageFolder(std::unique_ptr<FrameSource> source, const std::string& folder);

  bool next(InputFrame& frame) override;
  std::optional<std::uint64_t> totalFrames() override { return m_source->totalFrames(); }

 private:
  std::unique_ptr<FrameSource> m_source;
  std::string m_folder;
  std::vector<std::filesystem::path> m_images;  ///< sorted by name
  std::size_t m_next = 0;
};

}  // namespace grouptracker
