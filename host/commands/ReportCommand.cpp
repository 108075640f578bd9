#include "host/base/InputFile.h"
#include "host/base/PersonNames.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/ScoredSteps.h"
#include "host/evaluation/TruthReader.h"
#include "host/explain/DecisionLog.h"
#include "host/explain/Explainer.h"
#include "host/input/InputFormats.h"
#include "host/input/ReadAhead.h"
#include "host/output/RunReplay.h"
#include "host/output/WholeFile.h"
#include "host/report/ReportData.h"
#include "host/report/ReportPage.h"
#include "host/run/ParameterFile.h"
#include "host/run/RunStep.h"

#include <QDateTime>
#include <QFileInfo>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

/// `grouptracker report`: makes one HTML file that shows a run.
class ReportCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  InputChoice m_choice;
  std::string m_groupsFile;
  std::string m_outputFile;
  std::string m_title;
  std::string m_truthFile;
  std::string m_diagnosticsFile;
  std::string m_parameterFile;
};

/// Tells a report what is true at the frames of a run, and at which of them that was found. Frames
/// that a truth leaves out do not count; a group of which one person at most is in view is none.
class TruthTeller {
 public:
  explicit TruthTeller(GroupTruth truth) : m_truth(std::move(truth)) {}

  void tell(const RunStep& step, ReportData& data);

 private:
  std::uint32_t idOf(const PersonGroup& group);

  GroupTruth m_truth;
  std::map<PersonGroup, std::uint32_t> m_ids;  ///< of groups whose truth tells none
};

void TruthTeller::tell(const RunStep& step, ReportData& data) {
  if (!step.inputFrame || !m_truth.knows(*step.inputFrame)) {
    return;
  }
  const Grouping& whole = m_truth.at(*step.inputFrame);
  const GroupIds& ids = m_truth.idsAt(*step.inputFrame);
  const std::vector<Person> inView = personsOf(step);
  std::vector<TrueGroup> groups;
  Grouping seen;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    for (const PersonGroup& group : restrictTo({whole[i]}, inView)) {
      groups.push_back({ids.empty() ? idOf(whole[i]) : ids[i], group});
      seen.push_back(group);
    }
  }
  std::sort(seen.begin(), seen.end());
  data.addTruth(*step.inputFrame, groups, groupingOf(step) == seen);
}

/// The same for the same persons.
std::uint32_t TruthTeller::idOf(const PersonGroup& group) {
  return m_ids.emplace(group, static_cast<std::uint32_t>(m_ids.size())).first->second;
}

const char* const reportExample = R"(Example:
  grouptracker report scene.jsonl groups.jsonl --output report.html)";

/// Reads the run's steps into the report and, if there is one, into what explains them.
class StepTaker {
 public:
  StepTaker(std::string groupsFile, std::string input, ReportData& data)
      : m_groupsFile(std::move(groupsFile)), m_inputName(std::move(input)), m_data(data) {}

  /// Says what is true; before the first step, as the following.
  void compareWith(GroupTruth truth) { m_truth.emplace(std::move(truth)); }
  /// Says what the process decided, see `explain()`.
  void takeDiagnostics(const std::string& path, std::string& parameterFile);
  /// Takes the steps about frames up to this one, which the report has, while further frames are
  /// read. What goes wrong is said by `takeRest()`, as what is wrong with the frames comes first.
  void takeUntil(std::int64_t inputFrame);
  void takeRest();
  Explanations explanations() { return m_explainer ? m_explainer->explainAll() : Explanations(); }

 private:
  RunReplay& run();
  bool hasStep() { return m_isAtStep || (m_isAtStep = run().next(m_step)); }
  void take();

  std::string m_groupsFile;
  std::string m_inputName;
  ReportData& m_data;
  std::optional<InputFile> m_file;
  std::optional<RunReplay> m_run;
  std::optional<TruthTeller> m_truth;
  std::optional<Explainer> m_explainer;
  RunStep m_step;
  bool m_isAtStep = false;  ///< whether `m_step` is the next one
  std::exception_ptr m_failure;
};

/// Has the steps of the run tell the decisions in the diagnostics; returns what explains them.
/// Where nobody named the parameters, they are those that the diagnostics name.
Explainer explain(RunReplay& run, const std::string& diagnosticsFile, std::string& parameterFile) {
  InputFile file(diagnosticsFile);
  const DecisionLog log = DecisionLog::read(file.stream(), diagnosticsFile, nullptr);
  run.takeDecisions(log.decisions());
  if (parameterFile.empty()) {
    parameterFile = log.parameterFile();
  }
  return Explainer(readCoherenceThreshold(parameterFile));
}

/// Opened when it is needed.
RunReplay& StepTaker::run() {
  if (!m_run) {
    m_file.emplace(m_groupsFile);
    m_run.emplace(m_file->stream(), m_groupsFile);
  }
  return *m_run;
}

void StepTaker::takeDiagnostics(const std::string& path, std::string& parameterFile) {
  m_explainer = explain(run(), path, parameterFile);
}

void StepTaker::takeUntil(std::int64_t inputFrame) {
  if (m_failure) {
    return;
  }
  try {
    while (hasStep() && m_step.inputFrame.value_or(inputFrame) <= inputFrame) {
      take();
    }
  } catch (const InputError&) {
    m_failure = std::current_exception();
  }
}

void StepTaker::takeRest() {
  if (m_failure) {
    std::rethrow_exception(m_failure);
  }
  while (hasStep()) {
    take();
  }
}

void StepTaker::take() {
  m_isAtStep = false;
  if (!m_data.addGroups(m_step)) {
    throw run().error(fmt::format("frame {} is not in {}", *m_step.inputFrame, m_inputName));
  }
  if (m_explainer && m_step.source == GroupSource::evidence) {
    throw run().error(
        "holds groups, but the diagnostics are about what the process put out: the "
        "file of --actors is expected");
  }
  if (m_explainer) {
    m_explainer->add(m_step);
  }
  if (m_truth) {
    m_truth->tell(m_step, m_data);
  }
}

std::vector<std::pair<std::string, std::string>> parametersIn(const std::string& path) {
  std::vector<std::pair<std::string, std::string>> parameters;
  for (const ParameterEntry& entry : readValidParameterFile(path).values) {
    parameters.emplace_back(entry.row->label, entry.text);
  }
  return parameters;
}

/// When a file was written; where somebody who wants the same report again says a time by the
/// variable that is usual for it, that one.
std::string timeOf(const std::string& path) {
  bool isSaid = false;
  const qint64 said = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&isSaid);
  const QDateTime time = isSaid ? QDateTime::fromSecsSinceEpoch(said, Qt::UTC)
                                : QFileInfo(QString::fromStdString(path)).lastModified();
  return time.toString("yyyy-MM-dd hh:mm").toStdString();
}

/// Tells by the first two frames how many there are in a second.
class FrameClock {
 public:
  void look(const InputFrame& frame) {
    if (m_frames == 1 && m_last && frame.time) {
      m_step = *frame.time - *m_last;
    }
    m_last = frame.time;
    ++m_frames;
  }
  /// 0 when the frames have no times.
  double framesPerSecond() const { return m_step > 0.0 ? 1.0 / m_step : 0.0; }

 private:
  std::uint64_t m_frames = 0;
  std::optional<double> m_last;  ///< seconds
  double m_step = 0.0;           ///< seconds
};

/// Whether what the input calls some people is what stands for them.
bool haveNumbersOnly(const std::vector<RunPerson>& persons) {
  return std::all_of(persons.begin(), persons.end(),
                     [](const RunPerson& person) { return person.id < PersonNames::firstAlias; });
}

std::string nameOf(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

}  // namespace

Options ReportCommand::declare(CommandLine& program) {
  Options command =
      program.addCommand("report", "Makes one HTML file that shows a run", reportExample);
  declareInput(command, m_choice);
  command.add("GROUPS", m_groupsFile, "what the run wrote with --output, or with --actors")
      .required()
      .reads("FILE");
  command.add("--output", m_outputFile, "the report").required().writes("FILE");
  command.add("--title", m_title, "the heading, instead of the input's name").typeName("TEXT");
  command
      .add("--truth", m_truthFile,
           "the true groups, as evaluate takes them: who is wrong is marked at every frame")
      .reads("FILE");
  command
      .add(
          "--diagnostics", m_diagnosticsFile,
          "the diagnostics of the run: the report then tells why the process put out what the file "
          "of --actors holds")
      .reads("FILE");
  command
      .add("--parameters", m_parameterFile,
           "the parameters, if not at the place that the diagnostics name")
      .reads("FILE");
  return command;
}

int ReportCommand::run() {
  InputOptions options = inputOptions(m_choice);
  options.wantsPlacesOnly = true;
  OpenedInput input = openInput(m_choice.input, options);
  WholeFile output(m_outputFile);
  if (!input.isArriving) {
    input.frames = std::make_unique<ReadAhead>(std::move(input.frames));
  }
  ReportData data;
  ImageStrip images;
  FrameClock clock;
  StepTaker steps(m_groupsFile, m_choice.input, data);
  // Names are numbered in the order in which they are read, those of other files behind the
  // input's.
  bool mayGoAlong = m_truthFile.empty() && m_diagnosticsFile.empty();
  for (InputFrame frame; input.frames->next(frame);) {
    clock.look(frame);
    auto persons = personsIn(frame);
    mayGoAlong = mayGoAlong && haveNumbersOnly(persons);
    if (data.addFrame(frame.number, persons)) {
      images.addFrame(frame, std::move(persons));
    }
    if (mayGoAlong) {
      steps.takeUntil(frame.number);
    }
  }
  if (!m_truthFile.empty()) {
    steps.compareWith(readTruth(m_truthFile));
  }
  std::string parameterFile = m_parameterFile;
  if (!m_diagnosticsFile.empty()) {
    steps.takeDiagnostics(m_diagnosticsFile, parameterFile);
  }
  steps.takeRest();
  ReportTitle title{nameOf(m_choice.input),
                    nameOf(m_groupsFile),
                    clock.framesPerSecond(),
                    m_title,
                    timeOf(m_groupsFile),
                    "grouptracker " GROUPTRACKER_VERSION,
                    {}};
  if (!parameterFile.empty()) {
    title.parameters = parametersIn(parameterFile);
  }
  const QByteArray page = makeReportPage(title, data, images, steps.explanations());
  output.write({page.data(), static_cast<std::size_t>(page.size())});
  return finished;
}

std::unique_ptr<Command> makeReportCommand() {
  return std::make_unique<ReportCommand>();
}

}  // namespace grouptracker
