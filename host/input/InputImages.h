#pragma once

#include "host/people/InputFrame.h"
#include "host/video/VideoLibrary.h"

#include <opencv2/core.hpp>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace grouptracker {

/// Lets images and videos have at most so many pixels: their size is looked at before they are
/// decoded, since a small file may unfold to more than the memory holds. Holds for the whole
/// program; to be said before the first image.
void limitPixels(std::int64_t most);
inline constexpr std::int64_t usualMostPixels = 100'000'000;

/// Reads an image in colour. A file that is no readable image or has too many pixels is an
/// `InputError` at `place`.
cv::Mat readImage(const std::filesystem::path& file, const InputPlace& place);

/// Loads the images of an input's frames from their files. A file that is no readable image and an
/// image of another size than the first are an `InputError` at the frame's place.
class ImageLoader {
 public:
  /// Loads the frame's image when it names a file and holds none yet.
  void load(InputFrame& frame);

 private:
  cv::Size m_size;  ///< of the first image, pixels; empty before
};

/// The word that stands for no images where a folder or a video could stand.
inline constexpr const char* noImages = "none";

/// Gives the frames of an input that names no images those of `images`: a folder, a video file, or
/// `noImages`, which also takes away what the input itself names. An empty text changes nothing. A
/// video has to be decoded whether anybody looks at its pictures or not: `decodesVideo` tells
/// whether somebody does.
std::unique_ptr<FrameSource> withImages(std::unique_ptr<FrameSource> source,
                                        const std::string& images, bool decodesVideo);

/// Lets an input name images within a folder only, links followed: what somebody else made must not
/// show what lies elsewhere. An image outside is an `InputError` at the frame's place.
class ImagesWithin : public FrameSource {
 public:
  ImagesWithin(std::unique_ptr<FrameSource> source, const std::filesystem::path& folder);

  bool next(InputFrame& frame) override;
  std::optional<std::uint64_t> totalFrames() override { return m_source->totalFrames(); }

 private:
  std::unique_ptr<FrameSource> m_source;
  std::filesystem::path m_folder;  ///< without links
};

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

/// The same with the pictures of a video file. A file that is no readable video or that ends before
/// the input is an `InputError`.
class VideoImages : public FrameSource {
 public:
  VideoImages(std::unique_ptr<FrameSource> source, const std::string& file);

  bool next(InputFrame& frame) override;
  std::optional<std::uint64_t> totalFrames() override { return m_source->totalFrames(); }

 private:
  std::unique_ptr<FrameSource> m_source;
  std::string m_file;
  std::unique_ptr<VideoPictures> m_video;
  std::uint64_t m_frames = 0;
};

}  // namespace grouptracker
