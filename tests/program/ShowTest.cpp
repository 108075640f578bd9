#include "host/pictures/PictureExchange.h"
#include "host/pictures/window/ShowWindow.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QProcessEnvironment>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <thread>

namespace grouptracker {

namespace {

/// A window without a screen, and somebody who draws grey pictures: the first has brightness 10,
/// the next 20, and so on.
class Show : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QApplication application(argc, argv);
  }
  ~Show() override {
    pictures->end();
    if (drawing.joinable()) {
      drawing.join();
    }
  }
  void draw(int count) {
    drawing = std::thread([this, count] {
      for (int i = 1; i <= count; ++i) {
        pictures->add(cv::Mat(30, 40, CV_8UC3, cv::Scalar::all(10.0 * i)), i);
      }
    });
  }
  void press(Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &event);
  }
  /// Whether the picture of this number is shown, now or soon.
  bool shows(int number) {
    QElapsedTimer clock;
    for (clock.start(); clock.elapsed() < 20'000;) {
      QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
      const QImage seen = window.grab().toImage();
      if (qRed(seen.pixel(seen.width() / 2, seen.height() / 2)) == 10 * number) {
        return true;
      }
    }
    return false;
  }

  std::shared_ptr<PictureExchange> pictures = std::make_shared<PictureExchange>();
  ShowWindow window{pictures, 200.0};
  std::thread drawing;
};

TEST_F(Show, PausesAndStepsBothWays) {
  press(Qt::Key_Space);
  draw(6);
  for (int number = 1; number <= 3; ++number) {
    press(Qt::Key_Right);
    EXPECT_TRUE(shows(number));
  }
  press(Qt::Key_Left);
  EXPECT_TRUE(shows(2));
  press(Qt::Key_Left);
  press(Qt::Key_Left);
  EXPECT_TRUE(shows(1));
  press(Qt::Key_Space);
  EXPECT_TRUE(shows(6));
}

TEST_F(Show, EscapeEndsTheShowingAndNobodyWaits) {
  draw(6);
  EXPECT_TRUE(shows(6));
  press(Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
  EXPECT_FALSE(pictures->wantsMore());
  pictures->add(cv::Mat(30, 40, CV_8UC3), 7);
  pictures->add(cv::Mat(30, 40, CV_8UC3), 8);
}

TEST_F(Show, RunEndsWithItsInputAndNeedsAScreen) {
  const TempFolder folder;
  folder.write("p.txt", sampleParameters());
  folder.write("scene.jsonl", walkingScene(12));
  const QStringList arguments{"run",           "scene.jsonl", "--parameters",  "p.txt", "--output",
                              "groups.jsonl",  "--show",      "--diagnostics", "none",  "--quiet",
                              "--mobile-dump", "none",        "--video-rate",  "200"};
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
    environment.remove(variable);
  }
  Program blind(folder.path());
  blind.process().setProcessEnvironment(environment);
  EXPECT_EQ(blind.run(arguments), 4);
  EXPECT_EQ(blind.errors(),
            "the screen: cannot be opened, so --show has no place for its window\n");
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "groups.jsonl"));

  environment.insert("QT_QPA_PLATFORM", "offscreen");
  Program seeing(folder.path());
  seeing.process().setProcessEnvironment(environment);
  EXPECT_EQ(seeing.run(arguments), 0);
  EXPECT_EQ(seeing.errors(), "");
  EXPECT_EQ(linesOf(textOf(folder.path() / "groups.jsonl")).size(), 12U);
}

}  // namespace

}  // namespace grouptracker
