#include "host/commands/RecordingRun.h"

#include "host/base/InputError.h"
#include "host/base/Interruption.h"
#include "host/base/Log.h"
#include "host/base/OutputFile.h"
#include "host/batch/WorkFolder.h"
#include "host/commands/Command.h"
#include "host/commands/RunOptions.h"
#include "host/commands/RunSession.h"
#include "host/evaluation/EvaluationReport.h"
#include "host/evaluation/ScoredSteps.h"
#include "host/evaluation/TruthReader.h"
#include "host/run/RunParameters.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

const char* const groupsFile = "groups.jsonl";
const char* const logFile = "log.txt";

/// An input as an argument that nobody takes for an option.
std::string asArgument(const std::string& input) {
  return input.starts_with('-') ? "./" + input : input;
}

double megabytesSoFar() {
  constexpr double kilobytes = 1024.0;  // in a megabyte
  rusage usage = {};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / kilobytes;
}

/// What a recording was made of does not change while the clock goes on.
void setTimeOf(const FileMarks& inputs) {
  constexpr std::int64_t second = 1'000'000'000;
  std::int64_t latest = 0;
  for (const FileMark& mark : inputs) {
    latest = std::max(latest, mark.modified / second);
  }
  ::setenv("SOURCE_DATE_EPOCH", std::to_string(latest).c_str(), 1);
}

}  // namespace

RecordingRun::RecordingRun(const Recording& recording, const BatchFolder& folder,
                           std::vector<std::string> wishes, std::string work)
    : m_recording(recording),
      m_folder(folder),
      m_wishes(std::move(wishes)),
      m_work(std::move(work)) {}

std::string RecordingRun::make() {
  const WorkFolder atWork(m_work);
  try {
    return makeWhole();
  } catch (const Interruption&) {
    throw;
  } catch (const std::exception& failure) {
    // For who looks for last words; the log that was may be in its place already.
    std::ofstream(made(logFile), std::ios::app) << failure.what() << '\n';
    throw;
  }
}

std::string RecordingRun::makeWhole() {
  const auto start = Clock::now();
  m_result = m_folder.begin(m_recording, m_wishes);
  setTimeOf(m_result.inputs);
  try {
    takeProcess();
    run();
    m_recording.truth.empty() ? void() : score();
    const bool wantsReport =
        std::find(m_wishes.begin(), m_wishes.end(), withReport) != m_wishes.end();
    wantsReport ? report() : void();
    m_result.isDone = true;
  } catch (const Interruption&) {
    throw;
  } catch (const std::exception& failure) {
    m_result.message = failure.what();
  }
  m_result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  m_result.megabytes = megabytesSoFar();
  std::error_code unknown;
  if (fs::file_size(made(logFile), unknown) == 0) {
    fs::remove(made(logFile), unknown);
  }
  m_folder.finish(m_recording.name, m_work, m_result);
  return m_result.message;
}

void RecordingRun::takeProcess() const {
  const FileDescriptor log(
      ::open(made(logFile).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  const FileDescriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  ::dup2(log.get(), STDERR_FILENO);
  ::dup2(nothing.get(), STDIN_FILENO);
  fs::current_path(m_folder.inputs());
}

void RecordingRun::run() {
  CommandLine line("", "");
  RunOptions options;
  declareRun(line, options);
  std::vector<std::string> words{"run", asArgument(m_recording.input)};
  const std::vector<std::string> more = m_recording.options(m_work);
  words.insert(words.end(), more.begin(), more.end());
  if (const auto problem = line.problemIn(words)) {
    throw InputError(m_recording.place, *problem);
  }
  options.outputFile = made(groupsFile);
  options.diagnostics = options.diagnostics.empty() ? noOutput : options.diagnostics;
  options.mobileDump = options.mobileDump.empty() ? noOutput : options.mobileDump;
  if (const auto doubt = options.steps.doubt()) {
    program_log::write(program_log::Level::warning, "warning: " + *doubt);
  }
  RunSession session(options);
  const RunSummary summary = session.run();
  if (!summary.stoppedBy.empty()) {
    throw InputInterrupted();
  }
  m_result.frames = summary.frames;
  m_result.people = summary.people;
  m_result.groups = summary.groups.value_or(0);
  m_result.events = summary.events;
}

void RecordingRun::score() {
  const GroupTruth truth = readTruth(m_recording.truth);
  const GroupedFrames groups = readScored(made(groupsFile));
  if (const auto problem = whyAboutOthers(truth, groups)) {
    throw InputError(m_recording.truth, 1, *problem + m_recording.input);
  }
  if (const auto doubt = doubtAboutPeople(truth, groups)) {
    program_log::write(program_log::Level::warning,
                       fmt::format("{}: warning: {}", m_recording.truth, *doubt));
  }
  const EvaluationReport report = evaluate(groups, truth, {});
  OutputFile(made("scores.json")).writeLines(jsonOf(report));
  m_result.scores = {report.windowed.f1, report.whole.f1, report.frames.pairs.scores().f1};
}

/// As somebody would by the command line, with those options of `run` that a report has, too.
void RecordingRun::report() const {
  CommandLine line("", "");
  const auto command = makeReportCommand();
  const std::vector<OptionKind> known = command->declare(line).kinds();
  std::vector<std::string> words{"report", asArgument(m_recording.input), made(groupsFile),
                                 "--output=" + made("report.html")};
  if (!m_recording.truth.empty()) {
    words.push_back("--truth=" + m_recording.truth);
  }
  Recording shown = m_recording;
  std::erase_if(shown.settings, [&known](const Recording::Setting& setting) {
    return setting.kind.writes || std::none_of(known.begin(), known.end(), [&](const auto& kind) {
             return kind.name == setting.kind.name;
           });
  });
  const std::vector<std::string> more = shown.options(m_work);
  words.insert(words.end(), more.begin(), more.end());
  if (const auto problem = line.problemIn(words)) {
    throw InputError(m_recording.place, *problem);
  }
  command->run();
}

/// `run` with a command line of its own, which is used again and again.
struct RunOptionCheck::Parser {
  CommandLine line{"", ""};
  RunOptions options;
  std::vector<OptionKind> kinds = declareRun(line, options).kinds();
};

RunOptionCheck::RunOptionCheck() : m_parser(std::make_unique<Parser>()) {}

RunOptionCheck::~RunOptionCheck() = default;

const std::vector<OptionKind>& RunOptionCheck::kinds() const {
  return m_parser->kinds;
}

std::optional<std::string> RunOptionCheck::problemIn(const std::string& option) {
  auto problem = m_parser->line.problemIn({"run", "input", option});
  if (!problem && option.starts_with("--set=")) {
    try {
      RunParameters("", m_parser->options.parameterChanges);
    } catch (const InputError& error) {
      problem = error.what();
    }
  }
  return problem;
}

}  // namespace grouptracker
