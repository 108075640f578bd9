#pragma once

#include "host/pictures/PictureTarget.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

namespace grouptracker {

/// Hands pictures from the thread that draws them to the one that shows them, one at a time: who
/// draws waits until the picture before has been taken, so that a pause of the viewer is a pause of
/// the run. Once either side has ended the showing, pictures are dropped and nobody waits.
class PictureExchange : public PictureTarget {
 public:
  /// While a picture waits, `isStopped` is asked now and then whether to end the showing.
  void endWhen(std::function<bool()> isStopped);

  void add(const cv::Mat& picture, std::int64_t number) override;
  bool wantsMore() const override;
  /// Waits until the last picture has been taken.
  void finish() override;

  /// The next picture, if one is ready; never waits.
  std::optional<cv::Mat> take();
  /// Nobody looks any more.
  void end();

 private:
  void waitUntilTaken(std::unique_lock<std::mutex>& lock);

  mutable std::mutex m_mutex;
  std::condition_variable m_changed;
  std::optional<cv::Mat> m_offered;
  std::function<bool()> m_isStopped;
  bool m_isEnded = false;
};

}  // namespace grouptracker
