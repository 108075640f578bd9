#pragma once

#include "host/base/WorkBeside.h"
#include "host/pictures/PictureTarget.h"

#include <memory>

namespace grouptracker {

/// Hands the pictures to another target on a thread of its own, so that a picture is encoded while
/// the next one is drawn. Few of them wait, as each has megabytes. What the other target throws
/// comes out of the next `add()`, or out of `finish()`.
class BackgroundTarget : public PictureTarget {
 public:
  explicit BackgroundTarget(std::unique_ptr<PictureTarget> target);

  /// The picture is shared, not copied: nobody may draw on it any more.
  void add(const cv::Mat& picture, std::int64_t number) override;
  /// Waits until all pictures are there, then finishes the other target.
  void finish() override;

 private:
  struct Picture {
    cv::Mat pixels;
    std::int64_t number = 0;
  };

  std::unique_ptr<PictureTarget> m_target;
  WorkBeside<Picture> m_work;  ///< behind what it works with
};

}  // namespace grouptracker
