#include "host/input/InputImages.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "tracker/images/ImageCodec.h"

#include <QFile>
#include <QImageReader>
#include <QSize>
#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

/// An input whose images nobody wants.
class WithoutImages : public FrameSource {
 public:
  explicit WithoutImages(std::unique_ptr<FrameSource> source) : m_source(std::move(source)) {}

  bool next(InputFrame& frame) override {
    const bool hasNext = m_source->next(frame);
    frame.imageFile.clear();
    return hasNext;
  }
  std::optional<std::uint64_t> totalFrames() override { return m_source->totalFrames(); }

 private:
  std::unique_ptr<FrameSource> m_source;
};

std::int64_t mostPixels = usualMostPixels;

bool isTooLarge(std::int64_t width, std::int64_t height) {
  return width > 0 && height > 0 && width > mostPixels / height;
}

std::string tooLarge(std::int64_t width, std::int64_t height) {
  return fmt::format("has {}x{} pixels, more than --max-pixels {}", width, height, mostPixels);
}

/// The size as the head of the file tells it; empty for a form of which Qt knows nothing.
QSize sizeInHead(const std::filesystem::path& file) {
  QImageReader reader(QFile::decodeName(file.c_str()));
  reader.setDecideFormatFromContent(true);
  return reader.size();
}

}  // namespace

void limitPixels(std::int64_t most) {
  mostPixels = most;
}

cv::Mat readImage(const std::filesystem::path& file, const InputPlace& place) {
  cv::Mat pixels;
  std::error_code unreadable;
  // Nothing but a file: a pipe or a device could be waited for without end.
  if (std::filesystem::is_regular_file(file, unreadable)) {
    const QSize size = sizeInHead(file);
    if (isTooLarge(size.width(), size.height())) {
      throw InputError(place,
                       "the image " + file.string() + " " + tooLarge(size.width(), size.height()));
    }
    try {
      pixels = ImageCodec::loaded().read(file.string());
    } catch (const cv::Exception&) {
      pixels.release();  // the same as a file that is no image
    }
  }
  if (pixels.empty()) {
    throw InputError(place, "the image " + file.string() + " is missing or not readable");
  }
  return pixels;
}

void ImageLoader::load(InputFrame& frame) {
  if (!frame.image && !frame.imageFile.empty()) {
    const cv::Mat pixels = readImage(frame.imageFile, frame.place);
    if (m_size.empty()) {
      m_size = pixels.size();
    }
    if (pixels.size() != m_size) {
      throw InputError(frame.place,
                       fmt::format("the image {} has {}x{} pixels, the first has {}x{}",
                                   frame.imageFile.string(), pixels.cols, pixels.rows, m_size.width,
                                   m_size.height));
    }
    frame.image = QSharedPointer<kelDataImage>::create(pixels);
  }
}

std::unique_ptr<FrameSource> withImages(std::unique_ptr<FrameSource> source,
                                        const std::string& images, bool decodesVideo) {
  if (images.empty()) {
    return source;
  }
  if (images == noImages) {
    return std::make_unique<WithoutImages>(std::move(source));
  }
  if (!std::filesystem::is_regular_file(images)) {
    return std::make_unique<ImageFolder>(std::move(source), images);
  }
  return decodesVideo ? std::make_unique<VideoImages>(std::move(source), images)
                      : std::move(source);
}

ImagesWithin::ImagesWithin(std::unique_ptr<FrameSource> source, const std::filesystem::path& folder)
    : m_source(std::move(source)) {
  std::error_code unknown;
  m_folder = std::filesystem::weakly_canonical(folder.empty() ? "." : folder, unknown);
}

bool ImagesWithin::next(InputFrame& frame) {
  if (!m_source->next(frame)) {
    return false;
  }
  if (frame.imageFile.empty()) {
    return true;
  }
  std::error_code unknown;
  const auto place =
      std::filesystem::weakly_canonical(std::filesystem::absolute(frame.imageFile), unknown);
  const auto [end, ignored] =
      std::mismatch(m_folder.begin(), m_folder.end(), place.begin(), place.end());
  if (unknown || end != m_folder.end()) {
    throw InputError(frame.place, "the image " + frame.imageFile.string() +
                                      " lies outside the input's folder; --allow-outside-images "
                                      "lets it be read");
  }
  return true;
}

ImageFolder::ImageFolder(std::unique_ptr<FrameSource> source, const std::string& folder)
    : m_source(std::move(source)), m_folder(folder) {
  std::error_code failure;
  for (const auto& entry : std::filesystem::directory_iterator(folder, failure)) {
    if (entry.is_regular_file()) {
      m_images.push_back(entry.path());
    }
  }
  if (failure) {
    throw InputError(folder, "cannot be read: " + failure.message());
  }
  std::sort(m_images.begin(), m_images.end());
}

bool ImageFolder::next(InputFrame& frame) {
  if (!m_source->next(frame)) {
    return false;
  }
  if (frame.imageFile.empty()) {
    if (m_next == m_images.size()) {
      throw InputError(frame.place, m_folder + " has only " + std::to_string(m_images.size()) +
                                        " images, none for frame " + std::to_string(m_next + 1));
    }
    frame.imageFile = m_images[m_next];
  }
  ++m_next;
  return true;
}

VideoImages::VideoImages(std::unique_ptr<FrameSource> source, const std::string& file)
    : m_source(std::move(source)), m_file(file) {
  const InputFile canBeOpened(file);
  m_video = VideoLibrary::loaded().open(file);
  if (!m_video) {
    throw InputError(file, "neither a folder of images nor a readable video");
  }
  const cv::Size size = m_video->size();
  if (isTooLarge(size.width, size.height)) {
    throw InputError(file, tooLarge(size.width, size.height));
  }
}

bool VideoImages::next(InputFrame& frame) {
  if (!m_source->next(frame)) {
    return false;
  }
  const cv::Mat pixels = m_video->next();
  if (pixels.empty()) {
    throw InputError(frame.place, m_file + " has only " + std::to_string(m_frames) +
                                      " frames, none for frame " + std::to_string(m_frames + 1));
  }
  ++m_frames;
  if (frame.imageFile.empty()) {
    frame.image = QSharedPointer<kelDataImage>::create(pixels);
  }
  return true;
}

}  // namespace grouptracker
