#include "host/base/InputError.h"
#include "host/base/Log.h"
#include "host/base/OutputPlace.h"
#include "host/commands/Command.h"
#include "host/commands/RunOptions.h"
#include "host/commands/RunSession.h"
#include "host/input/InputFormats.h"
#include "host/pictures/PictureExchange.h"
#include "host/pictures/window/RunBesideWindow.h"
#include "host/run/RunParameters.h"

#include <fmt/format.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace grouptracker {

namespace {

/// `grouptracker run`: feeds an input to the process, frame by frame, and writes the groups.
class RunCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  bool needsScreen() const override { return m_options.steps.showsWindow; }
  program_log::Format logFormat() const override {
    return m_options.live.logsJson ? program_log::Format::json : program_log::Format::text;
  }
  int run() override;

 private:
  void checkAddresses() const;
  void completeOptions();
  void printParameters() const;
  void runSession();

  RunOptions m_options;
  std::function<std::string()> m_config;  ///< the options as a file
  bool m_readerLeft = false;
};

const char* const runExample = R"(Examples:
  grouptracker run tracks.csv
  grouptracker run scene.jsonl --rate 25 --output groups.jsonl --events events.jsonl
  grouptracker run mqtt://broker/people --publish mqtt://broker/groups --spool groups.spool
  grouptracker run --print-parameters --rate 10 --set coherenceThreshold=5 > parameters.txt)";

constexpr double longestLookAhead = 60.0;  // seconds; all that comes in it is kept in memory
const std::string skip = "skip";
const std::string stop = "stop";

void declareFiles(Options& command, RunOptions& options) {
  declareOptionalInput(command, options);
  declareParameters(command, options.parameterFile, options.parameterChanges);
  command
      .addFlag("--print-parameters", options.printsParameters,
               "instead of running, writes the parameters that the run would take, each with its "
               "meaning; without INPUT those for --rate frames a second")
      .onCommandLineOnly();
  command
      .add("--output", options.outputFile,
           "the groups of every frame, JSON Lines; when no output is asked for, NAME.groups.jsonl "
           "in the working folder, after the input's name")
      .writes("FILE");
  command
      .add("--actors", options.actorsFile,
           "what the process put out at every frame, JSON Lines: actors that stand for groups")
      .writes("FILE");
  command.add("--context", options.contextFile, "description of the scene, JSON").reads("FILE");
  command.add("--plugin", options.pluginFile, "the plugin, if not beside the program")
      .reads("FILE");
}

void declareEvidence(Options& command, RunOptions& options) {
  command
      .add("--model", options.modelFile,
           "what speaks for people belonging together, in place of the built-in model")
      .reads("FILE");
  const auto take = [&options](const std::string& text) {
    options.lookAhead = parseFinite(text);
    return options.lookAhead && *options.lookAhead >= 0.0 && *options.lookAhead <= longestLookAhead;
  };
  command
      .addParsed("--look-ahead", take,
                 fmt::format("0 to {} seconds are expected", longestLookAhead),
                 "of what follows a frame, so much is waited for before its groups are decided "
                 "(default: as long as the process waits, at most 3.2)")
      .typeName("SECONDS");
}

void declareTexts(Options& command, RunOptions& options) {
  command
      .add("--diagnostics", options.diagnostics,
           "where the process's lines go; none saves their cost (default: standard output, - as "
           "well, or nowhere when that is a terminal or holds something else)")
      .writes("FILE|none");
  command
      .add("--mobile-dump", options.mobileDump,
           "the file to which all that the process remembers is appended at every frame; none "
           "saves its cost (default: metas*.txt in the working folder, or none when standard "
           "output is a terminal)")
      .writes("FILE|none");
  command
      .add(
          "--status", options.statusFile,
          "says in JSON whether the outputs are complete: false from the first frame on, true when "
          "all is written")
      .writes("FILE");
  command.addFlag("--quiet", options.quiet, "no progress and no summary");
}

void declareBehaviour(Options& command, RunOptions& options) {
  const auto takeChoice = [&options](const std::string& choice) {
    options.skipsFailedFrames = choice == skip;
    return true;
  };
  command
      .addParsed("--on-error", takeChoice, "",
                 "what to do when the process fails at a frame (default stop)")
      .oneOf({skip, stop});
}

std::string counted(std::uint64_t count, const char* one, const char* more) {
  return fmt::format("{} {}", count, count == 1 ? one : more);
}

void printSummary(const RunSummary& summary, const std::string& groupsFile) {
  std::string text = fmt::format("{}, {}{}", counted(summary.frames, "frame", "frames"),
                                 summary.countedAll ? "" : "at least ",
                                 counted(summary.people, "person", "people"));
  if (summary.groups) {
    text += fmt::format(", {}, {}", counted(*summary.groups, "group", "groups"),
                        counted(summary.events, "event", "events"));
  }
  text += fmt::format(" in {:.1f} s", summary.seconds);
  if (!groupsFile.empty() && groupsFile != standardOutputName) {
    text += fmt::format(", written to {}", groupsFile);
  }
  if (summary.skippedFrames > 0) {
    text += fmt::format(", {} frames skipped", summary.skippedFrames);
  }
  if (summary.wantsTimes) {
    text += "; taken to be 0.4 s apart, for the input has no times (--rate)";
  }
  if (!summary.stoppedBy.empty()) {
    text += ", stopped by " + summary.stoppedBy;
  }
  program_log::write(program_log::Level::info, text);
}

}  // namespace

void declareParameters(Options& command, std::string& file, std::vector<std::string>& changes) {
  command
      .add("--parameters", file,
           "the tracker's 47 parameters, in place of a built-in set that suits the rate")
      .reads("FILE");
  command.add("--set", changes, "gives one parameter another value; can be given several times")
      .repeatable()
      .typeName("LABEL=VALUE");
}

Options declareRun(CommandLine& program, RunOptions& options) {
  Options command =
      program.addCommand("run", "Tracks the groups of an input and writes them", runExample);
  declareFiles(command, options);
  declareEvidence(command, options);
  declareTexts(command, options);
  declareStepOptions(command, options.steps);
  declareLiveOptions(command, options.live);
  declareBehaviour(command, options);
  return command;
}

Options RunCommand::declare(CommandLine& program) {
  Options command = declareRun(program, m_options);
  m_config = program.addConfig(command);
  command
      .addFlag("--print-config", m_options.printsConfig,
               "instead of running, writes all options with their values, as a file that --config "
               "takes")
      .onCommandLineOnly();
  return command;
}

int RunCommand::run() {
  checkAddresses();
  if (m_options.printsConfig) {
    fmt::print("{}", m_config());
    return finished;
  }
  if (m_options.printsParameters) {
    printParameters();
    return finished;
  }
  if (m_options.input.empty()) {
    throw InputError("INPUT", "tracks of people are expected; see grouptracker run --help");
  }
  m_options.broker = m_options.live.access;
  completeOptions();
  const auto doubt = m_options.steps.doubt();
  if (doubt && !m_options.quiet) {
    program_log::write(program_log::Level::warning, *doubt);
  }
  if (m_options.steps.showsWindow) {
    const auto screen = std::make_shared<PictureExchange>();
    m_options.steps.pictures.screen = screen;
    runBesideWindow([this] { runSession(); }, screen, m_options.steps.pictures.rate);
  } else {
    runSession();
  }
  return m_readerLeft ? readerLeft : finished;
}

/// Before anything repeats them, as they may hold a password.
void RunCommand::checkAddresses() const {
  const std::string& publish = m_options.live.publishAddress;
  if (MqttAddress::isOne(m_options.input)) {
    MqttAddress::parse(m_options.input);
  }
  if (!publish.empty()) {
    MqttAddress::parse(publish);
  }
}

/// What holds where the user said nothing. On a terminal nobody wants to see some lines for each
/// person and frame, nor to find a dump of them in the working folder.
void RunCommand::completeOptions() {
  if (!m_options.wantsGroups() && m_options.actorsFile.empty()) {
    m_options.outputFile = usualOutput(m_options.input);
    std::vector<std::string> others{m_options.input, m_options.diagnostics, m_options.mobileDump,
                                    m_options.statusFile};
    std::erase(others, standardOutputName);
    refuseOverwriting({m_options.outputFile}, others);
  }
  const bool isWatched = ::isatty(STDOUT_FILENO) == 1;
  if (m_options.diagnostics.empty() && (isWatched || m_options.takesStandardOutput())) {
    m_options.diagnostics = noOutput;
  }
  if (m_options.mobileDump.empty() && isWatched) {
    m_options.mobileDump = noOutput;
  }
}

/// On standard output, as a file that `--parameters` takes.
void RunCommand::printParameters() const {
  RunParameters parameters(m_options.parameterFile, m_options.parameterChanges);
  if (!m_options.input.empty()) {
    if (m_options.input != "-" && !MqttAddress::isOne(m_options.input) &&
        !std::filesystem::exists(m_options.input)) {
      throw InputError(m_options.input, "there is no such file or folder");
    }
    const auto step = secondsBetweenFrames(m_options.input, inputOptions(m_options));
    step ? parameters.suit(1.0 / *step) : void();
  } else if (m_options.rate) {
    parameters.suit(*m_options.rate);
  }
  fmt::print("{}", parameters.textWithMeanings());
}

void RunCommand::runSession() {
  RunSession session(m_options);
  const RunSummary summary = session.run();
  m_readerLeft = summary.readerLeft && summary.stoppedBy.empty();
  if (!m_options.quiet && !summary.endedWithLastReader) {
    printSummary(summary, m_options.outputFile);
  }
}

std::unique_ptr<Command> makeRunCommand() {
  return std::make_unique<RunCommand>();
}

}  // namespace grouptracker
