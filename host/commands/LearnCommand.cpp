#include "host/base/InputError.h"
#include "host/base/Log.h"
#include "host/base/OutputFile.h"
#include "host/base/OutputPlace.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/evaluation/Baselines.h"
#include "host/evaluation/TruthReader.h"
#include "host/evaluation/learning/EvidenceLearning.h"
#include "host/input/InputFormats.h"

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

namespace {

/// `grouptracker learn`: learns from annotated inputs what speaks for two people's belonging
/// together.
class LearnCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  void say(const std::string& what) const;

  std::vector<std::string> m_sequences;  ///< INPUT:TRUTH or INPUT:TRUTH:RATE
  std::string m_outputFile;
  std::string m_pictureFile;  ///< empty when not wanted
  double m_ridge = 30.0;
  double m_lookAhead = 3.2;  ///< seconds
  bool m_quiet = false;
  InputChoice m_reading;  ///< of all inputs
};

const char* const learnExample = R"(Example:
  grouptracker learn seq_eth:seq_eth/groups.txt:15 zara01:zara01/groups.txt:25 \
    --output model.json --calibration-picture calibration.svg)";

/// What the user says about one annotated input.
struct Annotated {
  std::string input;
  std::string truth;
  std::optional<double> rate;  ///< frame numbers a second

  std::string name() const {
    const std::filesystem::path path(input);
    return path.filename().empty() ? path.parent_path().filename() : path.filename();
  }
};

/// INPUT:TRUTH or INPUT:TRUTH:RATE.
Annotated annotatedIn(const std::string& text) {
  Annotated annotated;
  std::string rest = text;
  const auto last = rest.rfind(':');
  if (last != std::string::npos && rest.find(':') != last) {
    annotated.rate = parseFinite(rest.substr(last + 1));
    rest = annotated.rate ? rest.substr(0, last) : rest;
  }
  if (annotated.rate && *annotated.rate <= 0.0) {
    throw InputError(text, "the rate must be above 0");
  }
  const auto colon = rest.rfind(':');
  if (colon == std::string::npos) {
    throw InputError(text,
                     "INPUT:TRUTH is expected, an input and the file of its groups, perhaps "
                     "with the rate behind it");
  }
  annotated.input = rest.substr(0, colon);
  annotated.truth = rest.substr(colon + 1);
  return annotated;
}

void addTimes(std::vector<PeopleFrame>& frames, double rate) {
  for (PeopleFrame& frame : frames) {
    frame.time = static_cast<double>(frame.number - frames.front().number) / rate;
  }
}

LearnedSequence readSequence(const Annotated& annotated, const InputOptions& options,
                             double lookAhead) {
  const OpenedInput input = openInput(annotated.input, options);
  std::vector<PeopleFrame> frames = peopleIn(*input.frames);
  if (annotated.rate) {
    addTimes(frames, *annotated.rate);
  }
  LearnedSequence sequence(annotated.name(), std::move(frames), readTruth(annotated.truth),
                           lookAhead);
  if (sequence.examples().examples().empty()) {
    throw InputError(annotated.truth, 1,
                     "says nothing about two people near each other in " + annotated.input);
  }
  if (const auto problem =
          whyAboutOthers(sequence.truth(), sequence.groupsBy(EvidenceModel::builtIn()))) {
    throw InputError(annotated.truth, 1, *problem + annotated.input);
  }
  return sequence;
}

}  // namespace

Options LearnCommand::declare(CommandLine& program) {
  Options command = program.addCommand(
      "learn", "Learns from annotated inputs what speaks for two people's belonging together",
      learnExample);
  command
      .add("INPUT:TRUTH[:RATE]", m_sequences,
           "annotated inputs, each with the file of its groups and, where it tells no times, its "
           "frame numbers a second (default: 0.4 s a frame)")
      .required();
  command.add("--output", m_outputFile, "the model, for run --model").required().writes("FILE");
  command
      .add("--calibration-picture", m_pictureFile,
           "how far probabilities can be trusted, a picture as SVG")
      .writes("FILE");
  command
      .add("--ridge", m_ridge,
           "how strongly weights are held back: larger learns less from the single case")
      .positive()
      .showDefault();
  command.add("--look-ahead", m_lookAhead, "seconds of the future that the evidence may use")
      .notNegative()
      .showDefault();
  command.addFlag("--quiet", m_quiet, "no progress");
  declareReading(command, m_reading);
  return command;
}

int LearnCommand::run() {
  InputOptions options = inputOptions(m_reading);
  options.decodesVideo = false;
  LearnedSequences sequences;
  for (const std::string& text : m_sequences) {
    const Annotated annotated = annotatedIn(text);
    refuseOverwriting({m_outputFile, m_pictureFile}, {annotated.input, annotated.truth});
    say("reading " + annotated.input);
    sequences.push_back(readSequence(annotated, options, m_lookAhead));
  }
  say("learning from all");
  const EvidenceModel model = learn(sequences, m_ridge);
  OutputFile(m_outputFile).writeLines(model.text());
  const LearningReport report =
      examine(sequences, model, m_ridge, [this](const std::string& what) { say(what); });
  fmt::print("{}", report.table());
  if (!m_pictureFile.empty()) {
    OutputFile(m_pictureFile).writeLines(pictureOf(report.curves));
  }
  return finished;
}

void LearnCommand::say(const std::string& what) const {
  if (!m_quiet) {
    program_log::write(program_log::Level::info, what);
  }
}

std::unique_ptr<Command> makeLearnCommand() {
  return std::make_unique<LearnCommand>();
}

}  // namespace grouptracker
