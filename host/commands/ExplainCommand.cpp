#include "host/base/InputFile.h"
#include "host/base/JsonLine.h"
#include "host/base/PersonNames.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/evaluation/Baselines.h"
#include "host/explain/DecisionLog.h"
#include "host/explain/Explainer.h"
#include "host/explain/PairStory.h"
#include "host/input/InputFormats.h"

#include <fmt/format.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace grouptracker {

namespace {

/// `grouptracker explain`: tells from the diagnostics of a run why the process made a group, or
/// from the input why two persons are together, or not.
class ExplainCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  int explainPersons();

  std::string m_diagnosticsFile;       ///< or the input, where two persons are asked for
  std::vector<std::string> m_persons;  ///< the names of two, or none
  std::string m_modelFile;             ///< empty for the built-in one
  double m_lookAhead = 3.2;            ///< seconds
  InputChoice m_reading;               ///< for two persons
  std::string m_dumpFile;
  std::string m_parameterFile;
  std::optional<int> m_group;
  std::optional<std::int32_t> m_frame;
  std::optional<std::size_t> m_uncertain;
};

const char* const explainExample = R"(Example:
  grouptracker run scene.jsonl --parameters p.txt --actors actors.jsonl \
    --diagnostics lines.txt --mobile-dump mobiles.txt
  grouptracker explain lines.txt --group 4 --mobile-dump mobiles.txt
  grouptracker explain seq_eth --persons 17 18)";

/// The person whom the input calls so, which may be a number or a text.
PersonId personCalled(const std::string& name) {
  const char* const end = name.data() + name.size();
  std::int64_t number = 0;
  const auto [rest, error] = std::from_chars(name.data(), end, number);
  auto& names = PersonNames::ofProgram();
  return error == std::errc() && rest == end && number >= 0 ? names.numberOf(number)
                                                            : names.numberOf(name);
}

/// A line with the persons of a group at a processed frame; empty when there are none.
std::string membersLine(const DecisionLog& log, int group, std::int32_t frame) {
  const auto members = log.membersAt(group, frame);
  return members.empty()
             ? std::string()
             : fmt::format("members at frame {}: {}\n", frame, json_line::joined(members, ", "));
}

}  // namespace

Options ExplainCommand::declare(CommandLine& program) {
  Options command =
      program.addCommand("explain", "Tells why people are in a group, or not", explainExample);
  command
      .add("DIAGNOSTICS", m_diagnosticsFile,
           "the diagnostics of a run: why the process made its groups; with --persons the INPUT of "
           "the run")
      .required()
      .reads("FILE");
  Options what = command.addChoice("what to explain", 1, 2);
  what.add("--persons", m_persons, "why two people are together, or why not, over time")
      .count(2)
      .typeName("A B");
  what.add("--group", m_group, "the life of a group").typeName("G");
  what.add("--uncertain", m_uncertain, "the N decisions closest to the threshold").typeName("N");
  command.add("--frame", m_frame, "of the life only what is about this reported frame")
      .typeName("F");
  command
      .add("--mobile-dump", m_dumpFile,
           "the mobile dump of the same run: tells links, shared sons and ancestors")
      .reads("FILE");
  command
      .add("--parameters", m_parameterFile,
           "the parameters, if not at the place that the diagnostics name")
      .reads("FILE");
  command.add("--model", m_modelFile, "for --persons: a model that learn wrote").reads("FILE");
  command
      .add("--look-ahead", m_lookAhead,
           "for --persons: seconds of the future that a decision may use")
      .notNegative()
      .showDefault();
  declareReading(command, m_reading);
  return command;
}

int ExplainCommand::run() {
  if (!m_persons.empty()) {
    return explainPersons();
  }
  InputFile file(m_diagnosticsFile);
  std::unique_ptr<MobileDump> dump;
  if (!m_dumpFile.empty()) {
    dump = std::make_unique<MobileDump>(m_dumpFile);
  }
  const DecisionLog log = DecisionLog::read(file.stream(), m_diagnosticsFile, dump.get());
  Explainer explainer(
      readCoherenceThreshold(m_parameterFile.empty() ? log.parameterFile() : m_parameterFile));
  for (const RunStep& step : log.steps()) {
    explainer.add(step);
  }
  if (m_group) {
    const std::string text = (m_frame ? membersLine(log, *m_group, *m_frame) : std::string()) +
                             explainer.explainGroup(*m_group, m_frame);
    if (text.empty()) {
      throw InputError(m_diagnosticsFile,
                       fmt::format("says nothing about group {}{}", *m_group,
                                   m_frame ? fmt::format(" at frame {}", *m_frame) : ""));
    }
    fmt::print("{}", text);
  }
  if (m_uncertain) {
    fmt::print("{}", explainer.listUncertain(*m_uncertain));
  }
  return finished;
}

int ExplainCommand::explainPersons() {
  const EvidenceModel model =
      m_modelFile.empty() ? EvidenceModel::builtIn() : EvidenceModel::read(m_modelFile);
  GroupFinder finder(model, m_lookAhead);
  PairStory story(personCalled(m_persons.front()), personCalled(m_persons.back()), model);
  InputOptions options = inputOptions(m_reading);
  options.decodesVideo = false;
  const OpenedInput input = openInput(m_diagnosticsFile, options);
  for (InputFrame frame; input.frames->next(frame);) {
    story.watch(peopleIn(frame), finder);
  }
  story.finish(finder);
  for (const std::string& person : m_persons) {
    if (!story.saw(personCalled(person))) {
      throw InputError(m_diagnosticsFile, fmt::format("has no person {}", person));
    }
  }
  fmt::print("{}", story.text());
  return finished;
}

std::unique_ptr<Command> makeExplainCommand() {
  return std::make_unique<ExplainCommand>();
}

}  // namespace grouptracker
