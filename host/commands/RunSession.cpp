#include "host/commands/RunSession.h"

#include "host/base/DescriptorBuffer.h"
#include "host/base/FileDescriptor.h"
#include "host/base/FileIdentity.h"
#include "host/base/Interruption.h"
#include "host/base/OutputError.h"
#include "host/base/SystemProblem.h"
#include "host/input/InputFormats.h"
#include "host/input/SceneContextReader.h"
#include "host/output/GroupsWriter.h"
#include "host/run/PluginLoader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace grouptracker {

namespace {

/// The file name of an option that may be "none" or not given; empty then.
std::string fileOf(const std::string& option) {
  return option == noOutput ? std::string() : option;
}

FileDescriptor openForWriting(const std::string& path, int flags) {
  constexpr mode_t readableByAll = 0666;  // less what the user's mask takes away
  FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, readableByAll));
  if (!file.isOpen()) {
    throw OutputError(path, systemProblem("cannot be written"));
  }
  return file;
}

}  // namespace

RunSession::RunSession(const RunOptions& options)
    : m_options(options), m_parameters(readParameterFile(options.parameterFile)) {
  openInput();
  auto tracker = loadGroupTracker(m_options.pluginFile);
  openOutputs();
  startProcess(std::move(tracker));
}

RunSummary RunSession::run() {
  const bool showsProgress = !m_options.quiet && Progress::isPossible();
  const bool countsFrames = showsProgress && m_options.frames.isWhole();
  m_progress.emplace(showsProgress, countsFrames ? m_input.frames->totalFrames() : std::nullopt);
  try {
    runToTheEnd();
  } catch (const ClosedPipe&) {
    m_summary.pipeClosed = true;
  }
  m_progress->clear();
  m_summary.frames = m_process->frame();
  m_summary.seconds = m_progress->seconds();
  m_summary.stoppedBy = m_signals.signalName();
  return m_summary;
}

void RunSession::openInput() {
  InputOptions options = inputOptions(m_options);
  options.wakeDescriptor = m_signals.wakeDescriptor();
  options.decodesVideo = m_parameters.needsImages || m_options.steps.wantsPictures();
  if (!m_options.contextFile.empty()) {
    m_context = readSceneContext(m_options.contextFile);
  }
  m_input = grouptracker::openInput(m_options.input, options);
  if (!m_options.quiet) {
    for (const std::string& note : m_input.notes) {
      fmt::print(stderr, "{}\n", note);
    }
  }
}

void RunSession::openOutputs() {
  const std::string dump = fileOf(m_options.mobileDump);
  const std::string diagnostics = fileOf(m_options.diagnostics);
  std::vector<std::string> inputs = m_input.files;
  inputs.insert(inputs.end(),
                {m_options.parameterFile, m_options.calibrationFile, m_options.contextFile});
  std::vector<std::string> outputs = m_options.steps.files();
  outputs.insert(outputs.end(), {m_options.outputFile, diagnostics, dump});
  refuseOverwriting(outputs, inputs);
  m_sinks.push_back(std::make_unique<GroupsWriter>(m_options.outputFile));
  if (!dump.empty()) {
    openForWriting(dump, O_APPEND);  // the process opens it anew and would not say that it cannot
  }
  if (const auto& screen = m_options.steps.pictures.screen) {
    screen->endWhen([this] { return m_signals.stopRequested(); });
  }
  if (m_options.steps.wantsAnything()) {
    m_steps = std::make_unique<StepOutputs>(m_options.steps, m_parameters);
  }
  if (!diagnostics.empty()) {
    ::dup2(openForWriting(diagnostics, O_TRUNC).get(), STDOUT_FILENO);
  }
}

void RunSession::startProcess(std::unique_ptr<kelAbstractProcessGroupTracker> tracker) {
  if (m_parameters.problem) {
    fmt::print(stderr, "{}\n", m_parameters.problem->what());
  }
  ProcessOptions options;
  options.parameterFile = m_options.parameterFile;
  options.calibration = m_input.calibration;
  options.sceneContext = m_context;
  options.printsDiagnostics = m_options.diagnostics != noOutput;
  options.dumpsMobiles = m_options.mobileDump != noOutput;
  options.mobileDumpFile = fileOf(m_options.mobileDump);
  m_process = std::make_unique<ProcessRunner>(std::move(tracker), options);
  m_reporter = std::make_unique<FrameReporter>(m_parameters.delay);
}

void RunSession::runToTheEnd() {
  try {
    runFrames();
  } catch (const InputInterrupted&) {
    // The wait for the next frame ended because a stop was asked for.
  } catch (...) {
    if (m_steps) {
      m_steps->finishAfterFailure();
    }
    throw;
  }
  if (m_steps) {
    m_steps->finish();
  }
}

void RunSession::runFrames() {
  InputFrame frame;
  while (!m_signals.stopRequested() && m_input.frames->next(frame)) {
    runFrame(frame);
    checkStandardOutput();
    m_progress->update(m_process->frame());
  }
}

void RunSession::runFrame(InputFrame& frame) {
  if (m_parameters.needsImages) {
    m_images.load(frame);
  }
  m_summary.mobiles += frame.observed.size();
  m_reporter->note(frame);
  if (m_steps) {
    m_steps->note(frame);
  }
  errno = 0;
  try {
    const auto groups = m_process->run(frame);
    m_processErrno = errno;  // should standard output turn out to have failed, the reason is here
    handOut(m_reporter->report(groups));
  } catch (const ProcessError& failure) {
    if (!m_options.skipsFailedFrames) {
      throw;
    }
    if (++m_summary.skippedFrames == 1 && !m_options.quiet) {
      m_progress->clear();
      fmt::print(stderr, "{}; the frame is skipped, further ones are only counted\n",
                 failure.what());
    }
  }
}

void RunSession::handOut(const FrameReport& report) {
  for (const auto& sink : m_sinks) {
    sink->write(report);
  }
  if (m_steps) {
    m_steps->write(report);
  }
  for (const GroupReport& group : report.groups) {
    // Group ids are given in ascending order, so a higher one than ever is a new group.
    if (group.actor->getIdent() > m_newestGroup) {
      m_newestGroup = group.actor->getIdent();
      ++m_summary.groups;
    }
  }
}

void RunSession::checkStandardOutput() {
  const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  if (m_signals.pipeClosed()) {
    throw ClosedPipe();
  }
  if (!isWritten) {
    throw OutputError("standard output", systemProblem("cannot be written",
                                                       m_processErrno != 0 ? m_processErrno : EIO));
  }
}

}  // namespace grouptracker
