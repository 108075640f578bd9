#include "host/pictures/BackgroundTarget.h"

#include "host/base/FirstFailure.h"

#include <cstddef>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t capacity = 3;  // pictures; a key picture takes longer than the others

}  // namespace

BackgroundTarget::BackgroundTarget(std::unique_ptr<PictureTarget> target)
    : m_target(std::move(target)), m_work(capacity, [this](const Picture& picture) {
        m_target->add(picture.pixels, picture.number);
      }) {}

void BackgroundTarget::add(const cv::Mat& picture, std::int64_t number) {
  m_work.take({picture, number});
}

void BackgroundTarget::finish() {
  FirstFailure failure;
  failure.attempt([this] { m_work.end(); });
  failure.attempt([this] { m_target->finish(); });
  failure.rethrow();
}

}  // namespace grouptracker
