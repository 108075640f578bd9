#include "host/pictures/window/RunBesideWindow.h"

#include "host/base/ExitStatus.h"
#include "host/base/Log.h"
#include "host/pictures/window/ShowWindow.h"

#include <QApplication>

#include <cstdlib>
#include <future>

namespace grouptracker {

namespace {

/// What Qt says while it looks for a screen: hints that help nobody, and then that it gives up.
void endWithoutScreen(QtMsgType type, const QMessageLogContext&, const QString&) {
  if (type == QtFatalMsg) {
    program_log::write(program_log::Level::error,
                       "the screen: cannot be opened, so --show has no place for its window");
    std::_Exit(outputFailed);
  }
}

}  // namespace

std::unique_ptr<QCoreApplication> openScreen(int& argc, char** argv) {
  qInstallMessageHandler(endWithoutScreen);
  auto application = std::make_unique<QApplication>(argc, argv);
  qInstallMessageHandler(nullptr);
  QApplication::setQuitOnLastWindowClosed(false);
  return application;
}

void runBesideWindow(const std::function<void()>& work,
                     const std::shared_ptr<PictureExchange>& pictures, double rate) {
  ShowWindow window(pictures, rate);
  std::future<void> ending = std::async(std::launch::async, [&work] {
    const auto quit = [](void*) {
      QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    };
    const std::unique_ptr<void, decltype(quit)> whenDone(qApp, quit);
    work();
  });
  QCoreApplication::exec();
  ending.get();
}

}  // namespace grouptracker
