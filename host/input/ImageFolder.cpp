#include "host/input/ImageFolder.h"

#include "host/base/InputError.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace grouptracker {

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

}  // namespace grouptracker
