#pragma once

#include "benchmarks/SteadyScene.h"
#include "tests/support/base/Texts.h"
#include "tests/support/process/ProcessDriver.h"
#include "tests/support/process/StaticsGuard.h"

#include <memory>
#include <string>

/// Seconds that this program has computed so far.
double cpuSeconds();

/// A process on a steady scene whose frames are timed one by one. Its standard output and its dump
/// go nowhere unless a frame is recorded.
class MeasuredProcess {
 public:
  struct Options {
    SteadyScene::Options scene;
    unsigned int window = 10;   ///< "temporalWinSize:"
    unsigned int removal = 60;  ///< "temporalWinForRemoval:"
    bool diagnostics = true;
  };

  explicit MeasuredProcess(const Options& options);
  ~MeasuredProcess();
  MeasuredProcess(const MeasuredProcess&) = delete;
  MeasuredProcess& operator=(const MeasuredProcess&) = delete;

  /// Runs until the history is as long as it gets.
  void warmUp();
  /// Processes a frame; returns the seconds that it took.
  double step();
  /// What a frame prints and dumps.
  struct Texts {
    std::string printed;
    std::string dumped;
  };
  Texts record();

 private:
  void sendOutputTo(const std::string& fileName) const;

  Options m_options;
  StaticsGuard m_statics;
  TempFolder m_folder;
  std::string m_dump;
  std::unique_ptr<ProcessDriver> m_driver;
  SteadyScene m_scene;
  int m_standardOutput;  ///< where it led before
};
