#include "host/commands/TuneSession.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/Interruption.h"
#include "host/base/Log.h"
#include "host/base/OutputFile.h"
#include "host/base/OutputPlace.h"
#include "host/commands/StopSignals.h"
#include "host/evaluation/TruthReader.h"
#include "host/run/PluginLoader.h"

#include <QDir>
#include <QTemporaryDir>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <limits>
#include <map>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

const std::map<std::string, TunedScore> scores{{"sliding", TunedScore::sliding},
                                               {"windowed", TunedScore::windowed},
                                               {"whole", TunedScore::whole},
                                               {"groups", TunedScore::correctGroups},
                                               {"pairs", TunedScore::pairs}};

TunedSequence openSequence(const std::string& text, const InputOptions& options) {
  const auto colon = text.rfind(':');
  if (colon == std::string::npos) {
    throw InputError(text, "INPUT:TRUTH is expected, an input and the file of its groups");
  }
  const std::string input = text.substr(0, colon);
  const auto path = std::filesystem::path(input);
  if (std::filesystem::exists(path) && !std::filesystem::is_regular_file(path) &&
      !std::filesystem::is_directory(path)) {
    throw InputError(input, "is read several times, so a file or a folder is expected");
  }
  const auto name = path.filename().empty() ? path.parent_path().filename() : path.filename();
  return {name, TrialInput(input, options), readTruth(text.substr(colon + 1))};
}

TuningSpace readSpace(const std::string& path, const ParameterFile& base) {
  if (path.empty()) {
    return TuningSpace::standard(base.number("useClustering:") != 0.0);
  }
  InputFile file(path);
  return TuningSpace::read(file.stream(), path);
}

/// A folder for the parameter files of the trials that goes when the search does.
class TrialFolder {
 public:
  TrialFolder() : m_folder(QDir::temp().filePath("grouptracker-tune-XXXXXX")) {
    if (!m_folder.isValid()) {
      throw OutputError(m_folder.path().toStdString(), "cannot be made");
    }
  }
  std::string file(std::size_t number) const {
    return m_folder.filePath(QString::number(number)).toStdString();
  }

 private:
  QTemporaryDir m_folder;
};

double meanOf(const Trial& trial) {
  double sum = 0.0;
  for (const auto& score : trial.scores) {
    sum += score.value_or(0.0);
  }
  return sum / static_cast<double>(std::max<std::size_t>(trial.scores.size(), 1));
}

/// The scores of both side by side, and which is better.
std::string comparisonOf(const Trial& base, const Trial& found,
                         const std::vector<const TunedSequence*>& sequences,
                         const std::string& score) {
  std::string text = fmt::format("{:<24} {:>7} {:>7}\n", score, "base", "found");
  for (std::size_t i = 0; i < sequences.size(); ++i) {
    text += fmt::format("{:<24} {:7.3f} {:7.3f}\n", sequences[i]->name,
                        base.scores[i].value_or(0.0), found.scores[i].value_or(0.0));
  }
  text += fmt::format("{:<24} {:7.3f} {:7.3f}\n", "mean", meanOf(base), meanOf(found));
  if (meanOf(found) < meanOf(base)) {
    return text + "the base is better\n";
  }
  return text + (meanOf(found) > meanOf(base) ? "" : "the base is as good\n");
}

/// The last line of the file of parameters, which the tracker does not read any more.
std::string linkNote(const std::string& linkArguments) {
  return linkArguments.empty()
             ? ""
             : "# found together with these options of run:" + linkArguments + "\n";
}

std::string scoresOf(const Trial& trial, const std::vector<const TunedSequence*>& sequences) {
  std::string text;
  for (std::size_t i = 0; i < sequences.size(); ++i) {
    text += fmt::format("{} {:.3f}, ", sequences[i]->name, trial.scores[i].value_or(0.0));
  }
  return text + fmt::format("mean {:.3f}", meanOf(trial));
}

/// The tasks get this very command line, so that they read the same sequences in the same way.
std::string taskLineFor(const TrialTaskFiles& files) {
  const std::vector<std::string> words = ownArguments();
  std::string line = SlurmArray::quoted(ownProgram());
  for (auto word = words.begin() + 1; word != words.end(); ++word) {
    line += " " + SlurmArray::quoted(*word);
  }
  return line + fmt::format(" --tasks {} --part \"$SLURM_ARRAY_TASK_ID\"\n",
                            SlurmArray::quoted(files.path()));
}

}  // namespace

TuneSession::TuneSession(const TuneOptions& options)
    : m_options(options),
      m_base(readValidParameterFile(options.baseFile)),
      m_space(readSpace(options.spaceFile, m_base)) {
  InputOptions reading = inputOptions(options.reading);
  reading.decodesVideo = false;
  m_space.startFrom(options.reading.links);
  for (const auto* sequences : {&options.sequences, &options.further}) {
    for (const std::string& sequence : *sequences) {
      m_sequences.push_back(openSequence(sequence, reading));
    }
  }
}

void TuneSession::run() {
  Sequences all;
  for (const TunedSequence& sequence : m_sequences) {
    all.push_back(&sequence);
  }
  preloadGroupTracker("");
  m_space.baseOf(m_base);  // finds unknown names before anything is tried
  const Trial base = evaluated({}, all, "base");
  const Trial found = search(all, m_options.logFile, "all");
  const TrialSettings settings = m_space.settingsOf(found.candidate, m_base);
  OutputFile(m_options.outputFile)
      .writeLines(settings.parameters + linkNote(settings.linkArguments));
  const Trial result = evaluated(found.candidate, all, "result");
  const bool isSliding = scores.at(m_options.scoreName) == TunedScore::sliding;
  fmt::print("{}", comparisonOf(base, result, all, isSliding ? "windowed" : m_options.scoreName));
  if (!settings.linkArguments.empty()) {
    fmt::print("pass to run with {}:{}\n", m_options.outputFile, settings.linkArguments);
  }
  if (m_options.leaveOneOut) {
    leaveEachOut(result);
  }
}

Trial TuneSession::search(const Sequences& sequences, const std::string& logFile,
                          const char* purpose) {
  std::vector<std::string> names;
  for (const TunedSequence* sequence : sequences) {
    names.push_back(sequence->name);
  }
  TrialLog log(logFile, names, m_space, m_options.resume);
  TuningSearch search(m_space, m_options.search);
  m_bestWorth = -std::numeric_limits<double>::infinity();
  const SearchResult result = search.run(
      [&](std::vector<Trial>& trials) { evaluate(trials, sequences, log, search, purpose); });
  const Trial& found = result.middle.scores.empty() ? result.best : result.middle;
  if (found.scores.empty()) {
    throw InputError(m_options.baseFile, "all trials died");
  }
  if (!m_options.quiet) {
    program_log::write(program_log::Level::info,
                       fmt::format("{}: the middle, trial {}: {}", purpose, found.number,
                                   scoresOf(found, sequences)));
  }
  return found;
}

void TuneSession::evaluate(std::vector<Trial>& trials, const Sequences& sequences, TrialLog& log,
                           const TuningSearch& search, const char* purpose) {
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < trials.size(); ++i) {
    if (!log.recall(trials[i])) {
      trials[i].scores.assign(sequences.size(), std::nullopt);
      open.push_back(i);
    }
  }
  compute(trials, open, sequences, m_options.scoreName, log, purpose);
  for (const Trial& trial : trials) {
    if (search.worth(trial) > m_bestWorth) {
      m_bestWorth = search.worth(trial);
      if (!m_options.quiet) {
        program_log::write(program_log::Level::info,
                           fmt::format("{}: trial {} of {}, best so far {}", purpose, trial.number,
                                       m_options.search.trials, scoresOf(trial, sequences)));
      }
    }
  }
}

void TuneSession::compute(std::vector<Trial>& trials, const std::vector<std::size_t>& open,
                          const Sequences& sequences, const std::string& score, TrialLog& log,
                          const char* purpose) {
  TrialTasks tasks;
  for (const std::size_t i : open) {
    for (const TunedSequence* sequence : sequences) {
      const auto number = static_cast<std::size_t>(sequence - m_sequences.data());
      tasks.push_back({number, score, trials[i].candidate});
    }
  }
  std::map<std::size_t, std::size_t> missing;
  const auto finished = [&](std::size_t task, std::optional<double> result) {
    Trial& trial = trials[open[task / sequences.size()]];
    trial.scores[task % sequences.size()] = result;
    auto& ended = missing[trial.number];
    if (++ended == sequences.size()) {
      log.write(trial);
      if (!m_options.quiet && !result) {
        program_log::write(program_log::Level::warning,
                           fmt::format("{}: trial {} died", purpose, trial.number));
      }
    }
  };
  m_options.slurm.isWanted() ? computeBySlurm(tasks, finished)
                             : computeHere(tasks, m_options.jobs, finished);
}

void TuneSession::computeHere(const TrialTasks& tasks, std::size_t jobs,
                              const WorkerPool::Finished& finished) {
  const TrialFolder folder;
  std::vector<WorkerPool::Task> runs;
  for (const TrialTask& task : tasks) {
    TunedSequence& sequence = m_sequences.at(task.sequence);
    sequence.input.hold();
    const std::string parameterFile = folder.file(runs.size());
    const TrialSettings settings = m_space.settingsOf(task.candidate, m_base);
    OutputFile(parameterFile).writeLines(settings.parameters);  // here a full disk can be told
    runs.emplace_back([settings, &task, &sequence, parameterFile] {
      return runTrial(sequence, settings, scores.at(task.score), parameterFile);
    });
  }
  WorkerPool(jobs, std::chrono::seconds(m_options.patience)).run(runs, finished);
}

void TuneSession::computeBySlurm(const TrialTasks& tasks, const WorkerPool::Finished& finished) {
  if (tasks.empty()) {
    return;
  }
  const StopSignals caught;
  const std::string folder = std::filesystem::absolute(m_options.outputFile).string() + ".slurm";
  SlurmArray array(folder, m_options.slurm.siteOptions);
  if (!std::exchange(m_isSlurmReady, true)) {
    array.cancelEarlier();
    const std::string doubt = array.checkPlaces({ownProgram(), std::filesystem::current_path()});
    doubt.empty() ? void() : program_log::write(program_log::Level::warning, doubt);
  }
  const std::size_t chunk = m_options.slurm.chunkOf(array, tasks.size());
  const std::vector<std::size_t> lost = computeArray(array, tasks, chunk, finished);
  lost.empty() ? void() : computeAgain(array, tasks, lost, finished);
  std::error_code late;  // tasks may still be about to end
  std::filesystem::remove_all(folder, late);
}

/// Those of which no score came, each by itself: one that takes the memory or the time of a task
/// then costs itself only, as everywhere.
void TuneSession::computeAgain(SlurmArray& array, const TrialTasks& tasks,
                               const std::vector<std::size_t>& lost,
                               const WorkerPool::Finished& finished) {
  TrialTasks again;
  for (const std::size_t task : lost) {
    again.push_back(tasks[task]);
  }
  const auto finishedAgain = [&](std::size_t task, std::optional<double> score) {
    finished(lost[task], score);
  };
  const auto dead = computeArray(array, again, array.itemsOfTask(again.size()), finishedAgain);
  if (dead.size() == tasks.size()) {
    throw InputError(array.folder(), "no task has left a score; what they print lies there");
  }
  for (const std::size_t task : dead) {
    finishedAgain(task, std::nullopt);
  }
}

/// Waits for an array that computes the tasks, and returns those of which nothing came.
std::vector<std::size_t> TuneSession::computeArray(SlurmArray& array, const TrialTasks& tasks,
                                                   std::size_t chunk,
                                                   const WorkerPool::Finished& finished) {
  constexpr int mostDelay = 60'000;  // ms, of a folder that machines share
  constexpr int pause = 500;
  const QTemporaryDir place(QString::fromStdString(array.folder() + "/tasks-XXXXXX"));
  const TrialTaskFiles files(place.filePath("tasks.txt").toStdString(), chunk);
  files.writeTasks(tasks);
  array.submit("grouptracker-tune", taskLineFor(files), (tasks.size() + chunk - 1) / chunk);
  bool goesOn = array.follow([](const SlurmArray::State&) {});
  for (int delay = 0; goesOn && delay < mostDelay && !files.isComplete(tasks.size());
       delay += pause) {
    stop_wish::waitFor(-1, 0, pause);
    goesOn = !stop_wish::isThere();
  }
  if (!goesOn) {
    array.cancel();
    throw InputInterrupted();
  }
  return files.readResults(tasks.size(), finished);
}

void TuneSession::runTasks() {
  preloadGroupTracker("");
  const TrialTaskFiles files = TrialTaskFiles::open(m_options.tasksFile);
  const std::size_t part = m_options.part.value_or(0);
  const TrialTasks tasks = files.readTasks(part);
  const int granted = qEnvironmentVariableIntValue("SLURM_CPUS_PER_TASK");
  std::vector<std::optional<double>> results(tasks.size());
  computeHere(
      tasks, static_cast<std::size_t>(std::max(1, granted)),
      [&results](std::size_t task, std::optional<double> result) { results[task] = result; });
  files.writeResults(part, results);
}

Trial TuneSession::evaluated(const Candidate& candidate, const Sequences& sequences,
                             const char* purpose) {
  const std::string score = m_options.scoreName == "sliding" ? "windowed" : m_options.scoreName;
  std::vector<Trial> trials{{0, candidate, {}}};
  trials.front().scores.assign(sequences.size(), std::nullopt);
  TrialLog none("", {}, m_space, false);
  compute(trials, {0}, sequences, score, none, purpose);
  return trials.front();
}

void TuneSession::leaveEachOut(const Trial& result) {
  double carried = 0.0;
  double fitted = 0.0;
  for (std::size_t left = 0; left < m_options.sequences.size(); ++left) {
    Sequences others;
    for (std::size_t i = 0; i < m_sequences.size(); ++i) {
      if (i != left) {
        others.push_back(&m_sequences[i]);
      }
    }
    const TunedSequence& one = m_sequences[left];
    const std::string log =
        m_options.logFile.empty() ? "" : m_options.logFile + ".without-" + one.name + ".csv";
    const std::string purpose = "without " + one.name;
    const Trial found = search(others, log, purpose.c_str());
    const double score =
        evaluated(found.candidate, {&one}, purpose.c_str()).scores.front().value_or(0.0);
    const double inSample = result.scores[left].value_or(0.0);
    fmt::print("without {}: {:.3f} there, {:.3f} when it was tuned with; links:{}\n", one.name,
               score, inSample, m_space.settingsOf(found.candidate, m_base).linkArguments);
    carried += score;
    fitted += inSample;
  }
  const auto count = static_cast<double>(m_options.sequences.size());
  fmt::print("leave one out: mean {:.3f}, against {:.3f}\n", carried / count, fitted / count);
}

}  // namespace grouptracker
