#include "host/commands/BatchSession.h"

#include "host/base/ExitStatus.h"
#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/Log.h"
#include "host/base/OutputFile.h"
#include "host/base/OutputPlace.h"
#include "host/run/PluginLoader.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <fstream>
#include <link.h>
#include <utility>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

/// What makes the results: the program, its plugin, and the project's own libraries.
std::string hashOfProgram() {
  std::vector<std::string> files{"/proc/self/exe", pluginPath("")};
  ::dl_iterate_phdr(
      [](dl_phdr_info* library, std::size_t, void* found) {
        const std::string path = library->dlpi_name;
        const std::string name = fs::path(path).filename();
        if (name.starts_with("libmox.") || name.starts_with("libkel.")) {
          static_cast<std::vector<std::string>*>(found)->push_back(path);
        }
        return 0;
      },
      &files);
  for (const char* const library : {"libgrouptracker_images.so", "libgrouptracker_video.so"}) {
    files.push_back(fs::path(pluginPath("")).parent_path().parent_path() / library);
  }
  std::string hashes;
  for (const std::string& file : files) {
    hashes += hashOfFile(file);
  }
  return hashes;
}

/// The last line of what a recording said; empty when it said nothing.
std::string lastLineOf(const std::string& log) {
  std::ifstream in(log);
  std::string last;
  for (std::string line; std::getline(in, line);) {
    last = line.empty() ? last : line;
  }
  return last;
}

}  // namespace

BatchSession::BatchSession(const BatchOptions& options)
    : m_options(options),
      m_rules(
          m_check.kinds(), [this](const std::string& option) { return m_check.problemIn(option); },
          options.manifest, options.folder),
      m_folder(options.folder,
               fs::path(options.manifest).parent_path().empty()
                   ? "."
                   : fs::path(options.manifest).parent_path().string(),
               hashOfProgram()) {
  if (!options.leavesReports) {
    m_wishes.emplace_back(RecordingRun::withReport);
  }
}

int BatchSession::run() {
  takeNames();
  if (m_only.empty() && !m_options.only.empty()) {
    return finished;  // standard input names none
  }
  if (!isManifestGood()) {
    return wrongInput;
  }
  if (m_options.lists) {
    findOpen();
    forOpen([](const Recording& recording) { fmt::print("{}\n", recording.name); });
    return finished;
  }
  refuseOverwriting({m_folder.path() + "/summary.csv", m_folder.path() + "/index.html"},
                    {m_options.manifest});
  m_folder.prepare();
  if (!m_options.summarizes) {
    findOpen();
    m_options.slurm.isWanted() ? makeBySlurm() : makeHere();
  }
  if (m_signals.stopRequested()) {
    return finished;  // the program tells of the signal
  }
  return m_only.empty() ? summarize() : m_failed > 0 ? someFailed : finished;
}

/// Tells everything that is wrong. Where only some recordings count, what does not concern them
/// was somebody else's to check.
bool BatchSession::isManifestGood() {
  std::size_t problems = 0;
  const auto tell = [&problems](const InputError& problem) {
    ++problems;
    program_log::write(program_log::Level::error, problem.what());
  };
  const auto manifest = ManifestReader::open(m_options.manifest, tell);
  std::set<std::string> missing = m_only;
  for (ManifestEntry entry; manifest->next(entry);) {
    if (!m_only.empty() && missing.erase(m_rules.recordingOf(entry).name) == 0) {
      continue;
    }
    m_rules.check(entry, tell);
  }
  m_rules.checkNames(tell);
  for (const std::string& name : missing) {
    tell({m_options.manifest, name + " is none of the recordings"});
  }
  return problems == 0;
}

void BatchSession::takeNames() {
  for (const std::string& name : m_options.only) {
    if (name != "-") {
      m_only.insert(name);
      continue;
    }
    InputFile input("-");
    for (LineReader lines(input.stream(), "standard input"); lines.nextFilled();) {
      m_only.insert(lines.line());
    }
  }
}

void BatchSession::findOpen() {
  m_isOpen.clear();
  RecordingReader reader(m_options.manifest, m_rules);
  while (const auto recording = reader.next()) {
    const bool counts = m_only.empty() || m_only.contains(recording->name);
    const auto result = counts ? m_folder.resultOf(*recording, m_wishes) : std::nullopt;
    m_isOpen.push_back(counts && !(result && result->isDone));
  }
  m_open = static_cast<std::size_t>(std::count(m_isOpen.begin(), m_isOpen.end(), true));
}

void BatchSession::forOpen(const std::function<void(const Recording&)>& take) const {
  RecordingReader reader(m_options.manifest, m_rules);
  while (const auto recording = reader.next()) {
    if (isOpen(reader.index())) {
      take(*recording);
    }
  }
}

void BatchSession::startProgress() {
  constexpr double minute = 60.0;  // seconds
  m_progress.emplace(!m_options.quiet && Progress::isPossible(), m_open,
                     ProgressUnit{"recording", "recordings/min", minute});
}

void BatchSession::makeHere() {
  startProgress();
  m_reader = std::make_unique<RecordingReader>(m_options.manifest, m_rules);
  preloadGroupTracker("");
  ProcessPool(m_options.jobs, std::chrono::seconds(m_options.patience))
      .run([this] { return nextTask(); }, [this](const ProcessPool::End& end) { note(end); });
  m_progress->clear();
  m_folder.prepare();  // of what was ended, something may be left
  if (m_signals.stopRequested()) {
    say(fmt::format("stopped by {}; {} of {} recordings are made, and the same command goes on",
                    m_signals.signalName(), m_ended - m_failed, m_open));
  }
}

ProcessPool::Task BatchSession::nextTask() {
  while (auto recording = m_reader->next()) {
    if (isOpen(m_reader->index())) {
      const std::string work = m_folder.newWork(recording->name);
      const auto [made, isNew] = m_made.emplace(m_started++, Making{*std::move(recording), work});
      return [this, &making = made->second] {
        return RecordingRun(making.recording, m_folder, m_wishes, making.work).make();
      };
    }
  }
  return {};
}

void BatchSession::note(const ProcessPool::End& end) {
  const Making making = std::move(m_made.at(end.task));
  m_made.erase(end.task);
  if (m_signals.stopRequested()) {
    return;
  }
  m_progress->update(++m_ended);
  if (!end.result) {
    noteDeath(making, end);
  } else if (!end.result->empty()) {
    ++m_failed;
    say(fmt::format("{}: {}", making.recording.name, *end.result));
  }
}

/// A process that died could not leave its result behind.
void BatchSession::noteDeath(const Making& making, const ProcessPool::End& end) {
  const auto& [recording, work] = making;
  const std::string last = lastLineOf(work + "/log.txt");
  ++m_failed;
  RecordingResult result = m_folder.begin(recording, m_wishes);
  result.message = end.fate() + (last.empty() ? "" : "; its last words: " + last);
  result.seconds = end.seconds;
  result.megabytes = end.megabytes;
  say(fmt::format("{}: {}", recording.name, result.message));
  try {
    m_folder.finish(recording.name, work, result);
  } catch (const std::exception& failure) {
    say(failure.what());  // the others go on
  }
}

void BatchSession::say(const std::string& line) {
  if (m_progress) {
    m_progress->clear();
  }
  program_log::write(program_log::Level::info, line);
}

/// What is open becomes an array, unless one of an earlier command is still at work: what that one
/// leaves open has failed, or is the next command's.
void BatchSession::makeBySlurm() {
  SlurmArray array(m_folder.path() + "/.slurm", m_options.slurm.siteOptions);
  if (array.takeUp()) {
    say(fmt::format("job {} of an earlier command is still at work", array.job()));
    followSlurm(array, 1);
    return;
  }
  if (m_open == 0 || m_signals.stopRequested()) {
    return;
  }
  const std::string doubt = array.checkPlaces({ownProgram(), fs::absolute(m_options.manifest)});
  doubt.empty() ? void() : say(doubt);
  const std::size_t chunk = m_options.slurm.chunkOf(array, m_open);
  const std::string list = m_folder.path() + "/.slurm/open.txt";
  writeOpen(list);
  array.submit("grouptracker", taskLines(list, chunk), (m_open + chunk - 1) / chunk);
  followSlurm(array, chunk);
}

void BatchSession::writeOpen(const std::string& path) const {
  OutputFile list(path);
  forOpen([&list](const Recording& recording) { list.writeLines(recording.name + "\n"); });
}

std::string BatchSession::taskLines(const std::string& list, std::size_t chunk) const {
  return fmt::format(
      "first=$((SLURM_ARRAY_TASK_ID * {0} + 1))\n"
      "sed -n \"$first,$((first + {0} - 1))p\" {1} |\n"
      "  {2} batch {3} --output {4} --only - --jobs \"${{SLURM_CPUS_PER_TASK:-1}}\" "
      "--patience {5} --quiet{6}\n",
      chunk, SlurmArray::quoted(list), SlurmArray::quoted(ownProgram()),
      SlurmArray::quoted(m_options.manifest), SlurmArray::quoted(m_folder.path()),
      m_options.patience, m_options.leavesReports ? " --no-report" : "");
}

void BatchSession::followSlurm(const SlurmArray& array, std::size_t chunk) {
  startProgress();
  std::string told;
  const bool hasEnded = array.follow([&](const SlurmArray::State& state) {
    m_progress->update(m_open - std::min(m_open, state.left * chunk));
    if (!state.reason.empty() && state.reason != told) {
      told = state.reason;
      say(fmt::format("job {}: {}: {}", array.job(),
                      state.isHeld ? "tasks are held" : "no task has run for a while", told));
    }
  });
  m_progress->clear();
  if (hasEnded) {
    m_folder.prepare();  // of what was killed, something may be left
    return;
  }
  say(fmt::format("job {0} goes on by itself; the same command follows it, scancel {0} ends it",
                  array.job()));
}

int BatchSession::summarize() {
  BatchSummary summary(m_folder.path());
  RecordingReader reader(m_options.manifest, m_rules);
  while (const auto recording = reader.next()) {
    summary.add(recording->name, m_folder.resultOf(*recording, m_wishes));
  }
  const BatchTotals totals = summary.finish();
  if (!m_options.quiet) {
    const double minutes = m_progress ? m_progress->seconds() / 60.0 : 0.0;
    const std::string pace =
        m_ended == 0 ? ""
                     : fmt::format(" ({} made now, {:.1f} a minute)", m_ended,
                                   static_cast<double>(m_ended) / std::max(minutes, 1e-6));
    program_log::write(program_log::Level::info,
                       fmt::format("{} recordings: {}{}; see {}/index.html", totals.count(),
                                   totals.text(), pace, m_options.folder));
  }
  return totals.failed + totals.open > 0 ? someFailed : finished;
}

}  // namespace grouptracker
