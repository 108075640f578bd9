#pragma once

#include "tracker/diagnostics/Diagnostics.h"

#include <gtest/gtest.h>

#include <string>

/// The whole text that an action prints on standard output. What was gathered before is dropped.
template <typename Action>
std::string printed(Action action) {
  testing::internal::CaptureStdout();
  Diagnostics::flush();
  testing::internal::GetCapturedStdout();

  testing::internal::CaptureStdout();
  try {
    action();
  } catch (...) {
    testing::internal::GetCapturedStdout();
    throw;
  }
  Diagnostics::flush();
  return testing::internal::GetCapturedStdout();
}
