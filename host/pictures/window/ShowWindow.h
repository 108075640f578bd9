#pragma once

#include "host/pictures/PictureExchange.h"

#include <QImage>
#include <QWidget>

#include <cstddef>
#include <deque>
#include <memory>

namespace grouptracker {

/// Shows pictures as they come, at most at a given rate. Space pauses and goes on, the right arrow
/// steps one picture forward and the left one back through the latest pictures, Escape closes the
/// window. A window that is closed asks for no further pictures.
class ShowWindow : public QWidget {
 public:
  /// `rate` is in pictures per second.
  ShowWindow(std::shared_ptr<PictureExchange> pictures, double rate);

 protected:
  void timerEvent(QTimerEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void pause(bool isPaused);
  bool stepForward();
  void stepBack();
  void keep(const cv::Mat& picture);
  void open(const QSize& picture);

  std::shared_ptr<PictureExchange> m_pictures;
  std::deque<QImage> m_kept;  ///< the latest pictures, the newest last
  std::size_t m_shown = 0;    ///< among the kept ones
  bool m_isPaused = false;
  bool m_stepIsWanted = false;  ///< asked for while the next picture was not ready
};

}  // namespace grouptracker
