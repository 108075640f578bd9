#include "host/pictures/PictureExchange.h"

#include <chrono>
#include <utility>

namespace grouptracker {

void PictureExchange::endWhen(std::function<bool()> isStopped) {
  const std::lock_guard lock(m_mutex);
  m_isStopped = std::move(isStopped);
}

void PictureExchange::add(const cv::Mat& picture, std::int64_t) {
  std::unique_lock lock(m_mutex);
  waitUntilTaken(lock);
  if (!m_isEnded) {
    m_offered = picture;
  }
}

bool PictureExchange::wantsMore() const {
  const std::lock_guard lock(m_mutex);
  return !m_isEnded;
}

void PictureExchange::finish() {
  std::unique_lock lock(m_mutex);
  waitUntilTaken(lock);
}

std::optional<cv::Mat> PictureExchange::take() {
  const std::lock_guard lock(m_mutex);
  m_changed.notify_all();
  return std::exchange(m_offered, std::nullopt);
}

void PictureExchange::end() {
  const std::lock_guard lock(m_mutex);
  m_isEnded = true;
  m_changed.notify_all();
}

// A signal wakes nobody who waits here, so the wish to stop is looked for.
void PictureExchange::waitUntilTaken(std::unique_lock<std::mutex>& lock) {
  constexpr std::chrono::milliseconds patience(50);
  const auto canGoOn = [this] { return !m_offered || m_isEnded; };
  while (!m_changed.wait_for(lock, patience, canGoOn)) {
    if (m_isStopped && m_isStopped()) {
      m_isEnded = true;
    }
  }
}

}  // namespace grouptracker
