#include "host/commands/RunSession.h"

#include "host/base/FileDescriptor.h"
#include "host/base/InputFile.h"
#include "host/base/Interruption.h"
#include "host/base/OutputPlace.h"
#include "host/input/InputFormats.h"
#include "host/input/ReadAhead.h"
#include "host/input/SceneContextReader.h"
#include "host/run/PluginLoader.h"
#include "tracker/parameters/ParameterTable.h"

#include <QString>
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

/// The file of the mobiles that the process chooses when it is told none.
std::string usualDump(const ParameterFile& parameters) {
  const ParameterEntry* const folder = parameters.find("imagesFolder:");
  return usualMobileDump(folder == nullptr ? std::string() : std::get<std::string>(folder->value));
}

/// The file of the mobiles as the process is told it, which knows no "-".
std::string dumpFile(const RunOptions& options) {
  const std::string dump = fileOf(options.mobileDump);
  return dump == standardOutputName ? "/dev/stdout" : dump;
}

}  // namespace

RunSession::RunSession(const RunOptions& options)
    : m_options(options),
      m_signals(options.isService() ? Hangup::reopens : Hangup::stops),
      m_parameters(options.parameterFile, options.parameterChanges) {
  openInput();
  if (m_options.parameterFile.empty()) {
    const auto step = secondsBetweenFrames(m_options.input, inputOptions(m_options));
    step ? m_parameters.suit(1.0 / *step) : void();  // else they are for annotated frames
  }
  auto tracker = loadGroupTracker(m_options.pluginFile);
  startGroups();
  readFirstFrame();
  openOutputs();
  startProcess(std::move(tracker));
}

RunSummary RunSession::run() {
  const bool showsProgress = !m_options.quiet && Progress::isPossible();
  const bool countsFrames = showsProgress && m_options.frames.isWhole();
  m_progress.emplace(showsProgress, countsFrames ? m_input.frames->totalFrames() : std::nullopt);
  readAhead();
  runToTheEnd();
  warnOfReaders();
  m_progress->clear();
  m_summary.frames = m_tracker->frame();
  m_summary.people = m_people.count();
  m_summary.countedAll = m_people.isWhole();
  m_summary.seconds = m_progress->seconds();
  m_summary.stoppedBy = m_signals.signalName();
  m_summary.readerLeft = m_readers.hasAnybodyLeft();
  m_summary.endedWithLastReader = m_readers.haveAllLeft();
  if (m_summary.stoppedBy.empty() && !m_summary.endedWithLastReader) {
    warnOfInput();
  }
  if (m_summary.stoppedBy.empty() && !m_summary.readerLeft) {
    m_status->complete(m_summary.frames);
  }
  return m_summary;
}

void RunSession::openInput() {
  InputOptions options = inputOptions(m_options);
  options.decodesVideo = m_parameters.values().needsImages || m_options.steps.wantsPictures();
  if (!m_options.contextFile.empty()) {
    m_context = readSceneContext(m_options.contextFile);
  }
  options.onWarning = [this](const std::string& warning) { warn(warning); };
  if (MqttAddress::isOne(m_options.input) && !m_options.live.isStrict) {
    options.onProblem = [this](const InputError& problem) { passOver(problem); };
  }
  m_service.watch(options.messages);
  m_input = grouptracker::openInput(m_options.input, options);
  m_watch.emplace(m_input.imageSize);
  for (const std::string& note : m_input.notes) {
    say(program_log::Level::info, note);
  }
  for (const std::string& warning : m_input.warnings) {
    warn(warning);
  }
}

/// What somebody sends to a topic ends no run; it is counted and said once in a while.
void RunSession::passOver(const InputError& problem) {
  m_service.set(Metric::damagedMessages, ++m_damaged);
  if (m_tellingDamage.isTime()) {
    say(program_log::Level::warning,
        fmt::format("{} ({} messages passed over so far)", problem.what(), m_damaged));
  }
}

/// Whoever hands over frames one by one may wait for our answer, and is not waited for.
void RunSession::readFirstFrame() {
  std::error_code isNone;
  const bool isThere = std::filesystem::is_regular_file(m_options.input, isNone) ||
                       std::filesystem::is_directory(m_options.input, isNone);
  InputFrame frame;
  if (!isThere) {
    return;
  }
  if (m_input.frames->next(frame)) {
    m_first = std::move(frame);
  } else {
    m_isEmpty = true;  // it has said why and is not asked again
  }
}

/// What is there as a whole is read while the process works; what arrives may have words for the
/// user and need not be looked out for. How long a mobile lives that no frame refers to depends on
/// how far the reading is: the own process asks for no such, another one might.
void RunSession::readAhead() {
  if (m_first && !m_input.isArriving && m_options.pluginFile.empty()) {
    if (m_input.planActors) {
      m_input.planActors();
    }
    m_input.frames = std::make_unique<ReadAhead>(std::move(m_input.frames));
  }
}

bool RunSession::nextFrame(InputFrame& frame) {
  if (!m_first) {
    return !m_isEmpty && m_input.frames->next(frame);
  }
  frame = std::move(*m_first);
  m_first.reset();
  return true;
}

/// Of an input that was read to its end.
void RunSession::warnOfInput() {
  for (const std::string& warning :
       m_watch->warnings({m_parameters.values().delay, m_parameters.values().needsImages,
                          m_options.frames.isWhole()})) {
    warn(warning);
  }
}

void RunSession::warn(const std::string& warning) {
  say(program_log::Level::warning, fmt::format("{}: warning: {}", m_options.input, warning));
}

/// Says what is hardly meant, unless the user wants no words.
void RunSession::say(program_log::Level level, const std::string& line) {
  if (m_options.quiet) {
    return;
  }
  if (m_progress) {
    m_progress->clear();
  }
  program_log::write(level, line);
}

void RunSession::warnOfReaders() {
  for (const std::string& warning : m_readers.warnings()) {
    say(program_log::Level::warning, warning);
  }
}

void RunSession::openOutputs() {
  const std::string dump = fileOf(m_options.mobileDump);
  const std::string diagnostics = fileOf(m_options.diagnostics);
  m_status.emplace(m_options.statusFile);  // before an output is emptied
  if (m_options.mobileDump.empty() && m_options.pluginFile.empty()) {
    m_dump = lockForOthers(usualDump(m_parameters.values()));
  } else if (QString::fromStdString(dump).toStdString() != dump) {
    throw OutputError(dump, "the process writes to files with names in UTF-8 only");
  }
  m_service.open(m_options.live, [this](auto level, const auto& line) { say(level, line); });
  // Published first, so that no line stands in a file that the spool would not know after a crash.
  StepSinks own = m_service.sinks();
  if (!m_options.outputFile.empty()) {
    own.push_back(std::make_unique<RunFileWriter>(m_options.outputFile));
  }
  if (!m_options.actorsFile.empty()) {
    m_actors = m_readers.watch(std::make_unique<RunFileWriter>(m_options.actorsFile));
  }
  if (dump == standardOutputName) {
    m_dump = FileDescriptor(::dup(STDOUT_FILENO));  // which may soon lead to the diagnostics
  } else if (!dump.empty()) {
    // The process opens a file anew and would not say that it cannot.
    m_dump = openOutput(dump, OldContent::kept);
  }
  if (const auto& screen = m_options.steps.pictures.screen) {
    screen->endWhen([this] { return m_signals.stopRequested(); });
  }
  m_outputs = std::make_unique<StepOutputs>(m_options.steps, std::move(own), m_readers);
  if (!diagnostics.empty() && diagnostics != standardOutputName) {
    ::dup2(openOutput(diagnostics).get(), STDOUT_FILENO);
  }
  m_printed = ::lseek(STDOUT_FILENO, 0, SEEK_END);
  countOutputsOfProcess();
}

/// The dump in its usual place is nothing that a run goes on for.
void RunSession::countOutputsOfProcess() {
  if (m_options.diagnostics != noOutput) {
    m_readers.expect();
  }
  if (!fileOf(m_options.mobileDump).empty()) {
    m_readers.expect();
  }
  if (m_parameters.values().needsImages) {
    m_readers.expect();
  }
}

bool RunSession::goesOn() const {
  return !m_signals.stopRequested() && !m_readers.haveAllLeft();
}

void RunSession::startGroups() {
  if (!m_options.wantsGroups()) {
    return;
  }
  m_summary.groups = 0;
  GroupRunOptions options;
  if (!m_options.modelFile.empty()) {
    options.model = EvidenceModel::read(m_options.modelFile);
  }
  options.lookAhead = m_options.lookAhead;
  options.delay = m_parameters.values().delay;
  options.keepsImages = m_options.steps.wantsPictures();
  options.processDrawsOnImages = m_parameters.values().needsImages;
  m_groups.emplace(options);
}

void RunSession::startProcess(std::unique_ptr<kelAbstractProcessGroupTracker> tracker) {
  TrackerRunOptions options;
  options.parameterFile = m_parameters.file();
  options.delay = m_parameters.values().delay;
  options.calibration = m_input.calibration;
  options.sceneContext = m_context;
  options.printsDiagnostics = m_options.diagnostics != noOutput;
  options.dumpsMobiles = m_options.mobileDump != noOutput;
  options.mobileDumpFile = dumpFile(m_options);
  if (m_options.mobileDump == standardOutputName || !isRegular(m_dump)) {
    options.mobileDumpDescriptor = m_dump.get();
    m_signals.letGoWhenFull(m_dump.get());
  }
  options.describesSteps = m_actors != nullptr;
  m_tracker = std::make_unique<TrackerRun>(std::move(tracker));
  m_tracker->configure(options);
}

void RunSession::runToTheEnd() {
  try {
    runFrames();
    handOut(m_groups ? m_groups->finish() : RunSteps());
  } catch (const OutputError&) {
    finishAfterFailure(false);
    throw;
  } catch (...) {
    finishAfterFailure(true);
    throw;
  }
  m_outputs->finish();
}

/// The groups of all frames that were read are still of use when the run has failed; that failure
/// is what the user is told. Where a line could not be written no further one may follow.
void RunSession::finishAfterFailure(bool canWrite) {
  try {
    handOut(m_groups && canWrite ? m_groups->finish() : RunSteps());
  } catch (const std::exception&) {
    // The first failure is the one to report.
  }
  m_outputs->finishAfterFailure();
}

void RunSession::runFrames() {
  InputFrame frame;
  try {
    while (goesOn() && nextFrame(frame)) {
      runFrame(frame);
      m_service.measure(frame, m_tracker->frame(), m_summary.events);
      checkOutputsOfProcess();
      warnOfReaders();
      m_progress->update(m_tracker->frame());
    }
  } catch (const InputInterrupted&) {
    // The wait for the next frame ended because a stop was asked for.
  }
}

void RunSession::runFrame(InputFrame& frame) {
  if (m_parameters.values().needsImages) {
    m_images.load(frame);
  }
  countPeople(frame);
  m_summary.wantsTimes = m_groups && !frame.time;
  m_watch->look(frame);
  handOut(m_groups ? m_groups->advance(frame) : RunSteps());
  runProcess(frame);
}

void RunSession::countPeople(const InputFrame& frame) {
  for (const auto& actor : frame.actors) {
    if (!actor->getLinkedPhysicalObjectList().empty()) {
      m_people.see(actor->getIdent());
    }
  }
}

void RunSession::runProcess(const InputFrame& frame) {
  errno = 0;
  try {
    const RunStep step = m_tracker->advance(frame);
    m_processErrno = errno;  // should standard output turn out to have failed, the reason is here
    if (m_actors) {
      m_actors->write(step);
    }
  } catch (const ProcessError& failure) {
    if (!m_options.skipsFailedFrames) {
      throw;
    }
    if (++m_summary.skippedFrames == 1 && !m_options.quiet) {
      say(program_log::Level::warning,
          fmt::format("{}; the frame is skipped, further ones are only counted", failure.what()));
    }
  }
}

/// The way of the groups' steps to the outputs.
void RunSession::handOut(RunSteps steps) {
  for (RunStep& step : steps) {
    *m_summary.groups += static_cast<std::uint64_t>(
        std::count_if(step.groups.begin(), step.groups.end(),
                      [&step](const RunGroup& group) { return group.since == step.inputFrame; }));
    step.events = m_detector.next(step);
    m_summary.events += step.events.size();
    m_service.set(Metric::groups, std::uint64_t{step.groups.size()});
    m_outputs->take(std::move(step));
  }
}

void RunSession::checkOutputsOfProcess() {
  checkDiagnostics();
  const auto problem = m_tracker->outputProblem();
  if (!problem) {
    return;
  }
  const std::string dump = dumpFile(m_options);
  const bool isOfDump = !dump.empty() && std::string(problem->what()).starts_with(dump + ": ");
  if (!isOfDump || hasReader(m_dump.isOpen() ? m_dump.get() : STDOUT_FILENO)) {
    throw OutputError(*problem);
  }
  m_readers.leave(dump);  // the process writes no more of it
}

void RunSession::checkDiagnostics() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) {
    m_printed = ::lseek(STDOUT_FILENO, 0, SEEK_CUR);
    return;
  }
  const std::string file = fileOf(m_options.diagnostics);
  const std::string name = file.empty() || file == standardOutputName ? "standard output" : file;
  const bool isFull = hasReader(STDOUT_FILENO);
  if (!isFull) {
    m_readers.leave(name);
  }
  // No part of a frame, such as half a line, is better than a part; of a pipe nothing is taken
  // back.
  [[maybe_unused]] const int ignored = ::ftruncate(STDOUT_FILENO, m_printed);
  const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  ::dup2(nowhere.get(), STDOUT_FILENO);
  if (isFull) {
    const int error = m_processErrno != 0 ? m_processErrno : EIO;
    throw OutputError(name, systemProblem("cannot be written", error));
  }
  std::clearerr(stdout);
}

}  // namespace grouptracker
