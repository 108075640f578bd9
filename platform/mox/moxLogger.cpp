#include <mox/moxLogger.h>

moxLogger& moxLogger::instance() {
  static moxLogger logger;
  return logger;
}
