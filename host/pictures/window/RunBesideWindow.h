#pragma once

#include "host/pictures/PictureExchange.h"

#include <QCoreApplication>

#include <functional>
#include <memory>

namespace grouptracker {

/// The application of a program that opens windows. When there is no screen the program ends here,
/// with one line and the status of an output that cannot be written, since Qt would abort it.
std::unique_ptr<QCoreApplication> openScreen(int& argc, char** argv);

/// Does the work on a thread of its own while a window shows the pictures, at most `rate` of them
/// per second. Returns when the work is done, whether the window is still open or not, and throws
/// what the work threw. Needs the application of `openScreen()`.
void runBesideWindow(const std::function<void()>& work,
                     const std::shared_ptr<PictureExchange>& pictures, double rate);

}  // namespace grouptracker
