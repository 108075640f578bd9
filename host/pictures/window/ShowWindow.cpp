#include "host/pictures/window/ShowWindow.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t mostKeptBytes = 200'000'000;
constexpr std::size_t fewestKept = 10;  // pictures, however large

}  // namespace

ShowWindow::ShowWindow(std::shared_ptr<PictureExchange> pictures, double rate)
    : m_pictures(std::move(pictures)) {
  constexpr double milliseconds = 1000.0;
  startTimer(static_cast<int>(milliseconds / rate), Qt::PreciseTimer);
  pause(false);
}

void ShowWindow::timerEvent(QTimerEvent*) {
  if ((!m_isPaused || m_stepIsWanted) && stepForward()) {
    m_stepIsWanted = false;
  }
}

void ShowWindow::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Space:
      pause(!m_isPaused);
      break;
    case Qt::Key_Right:
      pause(true);
      m_stepIsWanted = !stepForward();
      break;
    case Qt::Key_Left:
      pause(true);
      stepBack();
      break;
    case Qt::Key_Escape:
      close();
      break;
    default:
      QWidget::keyPressEvent(event);
  }
}

void ShowWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::black);
  if (!m_kept.empty()) {
    const QImage& picture = m_kept[m_shown];
    QRect place(QPoint(), picture.size().scaled(size(), Qt::KeepAspectRatio));
    place.moveCenter(rect().center());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, picture);
  }
}

void ShowWindow::closeEvent(QCloseEvent* event) {
  m_pictures->end();
  m_kept.clear();
  QWidget::closeEvent(event);
}

void ShowWindow::pause(bool isPaused) {
  m_isPaused = isPaused;
  m_stepIsWanted = false;
  setWindowTitle(isPaused ? "Groups (paused)" : "Groups");
}

bool ShowWindow::stepForward() {
  if (m_shown + 1 < m_kept.size()) {
    ++m_shown;
  } else if (const auto picture = m_pictures->take()) {
    keep(*picture);
  } else {
    return false;
  }
  update();
  return true;
}

void ShowWindow::stepBack() {
  m_shown = m_shown == 0 ? 0 : m_shown - 1;
  update();
}

void ShowWindow::keep(const cv::Mat& picture) {
  const QImage shared(picture.data, picture.cols, picture.rows, static_cast<int>(picture.step),
                      QImage::Format_BGR888);
  m_kept.push_back(shared.copy());
  const auto bytes = static_cast<std::size_t>(m_kept.back().sizeInBytes());
  if (m_kept.size() > std::max(fewestKept, mostKeptBytes / bytes)) {
    m_kept.pop_front();
  }
  m_shown = m_kept.size() - 1;
  if (!isVisible()) {
    open(m_kept.back().size());
  }
}

// As large as the picture, as long as that leaves some of the screen free.
void ShowWindow::open(const QSize& picture) {
  constexpr double largest = 0.9;  // of the screen
  const QSize room = QGuiApplication::primaryScreen()->availableSize() * largest;
  const bool fits = picture.width() <= room.width() && picture.height() <= room.height();
  resize(fits ? picture : picture.scaled(room, Qt::KeepAspectRatio));
  show();
}

}  // namespace grouptracker
