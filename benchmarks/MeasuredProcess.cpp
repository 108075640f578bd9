#include "benchmarks/MeasuredProcess.h"

#include "tests/support/process/StaticsGuard.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"

#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

double cpuSeconds() {
  std::timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

MeasuredProcess::MeasuredProcess(const Options& options)
    : m_options(options), m_scene(options.scene), m_standardOutput(dup(STDOUT_FILENO)) {
  setTestParameters();
  Util::temporalWinSize = options.window;
  GroupTracker::maxFrames = options.removal;
  GroupTracker::maxDistGroupCreation = 2.0;
  GroupTracker::maxDistGroupUpdate = 3.0;
  Group::coherenceThreshold = 8.0;
  // A link, so that the dump can be sent elsewhere while the process runs.
  m_dump = (m_folder.path() / "dump").string();
  std::filesystem::create_symlink("/dev/null", m_dump);
  QMap<QString, QVariant> specific{{"mobileDump", QString::fromStdString(m_dump)}};
  if (!options.diagnostics) {
    specific = {{"mobileDump", false}, {"diagnostics", false}};
  }
  m_driver = std::make_unique<ProcessDriver>(specific);
  sendOutputTo("/dev/null");
}

MeasuredProcess::~MeasuredProcess() {
  std::fflush(stdout);
  dup2(m_standardOutput, STDOUT_FILENO);
  close(m_standardOutput);
}

void MeasuredProcess::sendOutputTo(const std::string& fileName) const {
  std::fflush(stdout);
  const int file = open(fileName.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(file, STDOUT_FILENO);
  close(file);
}

void MeasuredProcess::warmUp() {
  for (unsigned int i = 0; i < m_options.window + m_options.removal + 10; ++i) {
    step();
  }
}

double MeasuredProcess::step() {
  auto& process = m_driver->process();
  process.init();
  process.setActors(m_scene.next());
  const double start = cpuSeconds();
  process.process();
  return cpuSeconds() - start;
}

MeasuredProcess::Texts MeasuredProcess::record() {
  const std::string printed = (m_folder.path() / "printed").string();
  const std::string dumped = (m_folder.path() / "dumped").string();
  std::filesystem::remove(m_dump);
  std::filesystem::create_symlink(dumped, m_dump);
  sendOutputTo(printed);
  step();
  sendOutputTo("/dev/null");
  std::filesystem::remove(m_dump);
  std::filesystem::create_symlink("/dev/null", m_dump);
  return {textOf(printed), textOf(dumped)};
}
