#include "host/batch/SlurmArray.h"

#include "host/base/Interruption.h"
#include "host/base/OutputPlace.h"
#include "host/output/WholeFile.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QSysInfo>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sys/vfs.h>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

struct Answer {
  int status = -1;
  QString text;
  QString errors;
};

Answer ask(const QString& program, const QStringList& arguments) {
  if (QStandardPaths::findExecutable(program).isEmpty()) {
    throw OutputError("--engine slurm", program.toStdString() + " is not to be found");
  }
  QProcess process;
  process.start(program, arguments);
  process.closeWriteChannel();
  const bool hasEnded = process.waitForFinished(-1);
  return {hasEnded && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
          process.readAllStandardOutput(), QString(process.readAllStandardError()).trimmed()};
}

/// What a command says that has to succeed.
QString told(const QString& program, const QStringList& arguments) {
  const Answer answer = ask(program, arguments);
  if (answer.status != 0) {
    throw OutputError(program.toStdString(), answer.errors.section('\n', -1).toStdString() +
                                                 fmt::format(" (status {})", answer.status));
  }
  return answer.text;
}

/// Whether a folder lies on a file system that by its kind belongs to one machine.
bool isOfThisMachine(const std::string& folder) {
  constexpr std::array<unsigned long, 8> kinds{
      0xEF53,      // ext2, 3, 4
      0x58465342,  // XFS
      0x9123683E,  // Btrfs
      0x2FC12FC1,  // ZFS
      0xF2F52010,  // F2FS
      0x794C7630,  // an overlay, as containers have it
      0x01021994,  // tmpfs
      0x858458F6,  // ramfs
  };
  struct statfs status = {};
  return ::statfs(folder.c_str(), &status) == 0 &&
         std::find(kinds.begin(), kinds.end(), static_cast<unsigned long>(status.f_type)) !=
             kinds.end();
}

QString shortName(const QString& host) {
  return host.section('.', 0, 0);
}

/// Whether a task that waits for this never goes on by itself.
bool isHold(const QString& reason) {
  return reason.contains("held", Qt::CaseInsensitive) ||
         reason.contains("hold", Qt::CaseInsensitive);
}

const char* const jobFile = "/job";

// Between two questions, ms: longer and longer, to spare the site's controller.
constexpr int shortestPause = 300;

int longer(int pause) {
  constexpr int longest = 10'000;
  return std::min(longest, pause + pause / 4);
}

}  // namespace

SlurmArray::SlurmArray(const std::string& folder, const std::vector<std::string>& siteOptions)
    : m_folder(folder), m_siteOptions(siteOptions) {
  makeFolder(folder);
}

/// The site's options as arguments; when names are given, those only.
QStringList SlurmArray::siteOptions(const std::vector<std::string>& names) const {
  QStringList options;
  for (const std::string& option : m_siteOptions) {
    const std::string name = option.substr(0, option.find('='));
    if (names.empty() || std::find(names.begin(), names.end(), name) != names.end()) {
      options << QString::fromStdString("--" + option);
    }
  }
  return options;
}

/// A node that tasks may run on and that is not this machine; empty without one.
QString SlurmArray::nodeElsewhere() const {
  const QString here = shortName(QSysInfo::machineHostName());
  const bool isPartitionNamed = !siteOptions({"partition"}).isEmpty();
  const QStringList question{"-h", "-N", "-o", "%N %n %P"};
  const QString nodes = told("sinfo", question + siteOptions({"partition", "clusters"}));
  for (const QString& line : nodes.split('\n', Qt::SkipEmptyParts)) {
    const bool isMeant = isPartitionNamed || line.trimmed().endsWith('*');
    const bool isHeading = line.startsWith("CLUSTER:");
    if (isMeant && !isHeading && shortName(line.section(' ', 1, 1)) != here) {
      return line.section(' ', 0, 0);
    }
  }
  return {};
}

std::string SlurmArray::checkPlaces(std::vector<std::string> places) const {
  places.insert(places.begin(), m_folder);
  std::erase_if(places, [](const std::string& place) { return !isOfThisMachine(place); });
  const QString node = places.empty() ? QString() : nodeElsewhere();
  if (node.isEmpty()) {
    return {};
  }
  // A disk of this machine may be seen there nevertheless, when this one serves it.
  std::string lines;
  for (const std::string& place : places) {
    lines += "test -e " + quoted(place) + " || echo " + quoted(place) + "\n";
  }
  const QStringList way{"--quiet",    "--nodelist=" + node, "--nodes=1",
                        "--ntasks=1", "--immediate=20",     "--chdir=/"};
  const Answer probe =
      ask("srun", siteOptions() + way +
                      QStringList{"sh", "-c", QFile::decodeName((lines + "echo asked").c_str())});
  const QStringList said = probe.text.split('\n', Qt::SkipEmptyParts);
  if (said.isEmpty() || said.last() != "asked") {
    return fmt::format("node {} has no time to say whether it sees {}: {}", node.toStdString(),
                       fmt::join(places, ", "), probe.errors.section('\n', -1).toStdString());
  }
  if (said.size() > 1) {
    throw OutputError(said.first().toStdString(),
                      "lies on a disk of this machine, which node " + node.toStdString() +
                          " does not see; a folder that all share is needed");
  }
  return {};
}

std::size_t SlurmArray::itemsOfTask(std::size_t items) const {
  constexpr std::size_t mostTasks = 1000;
  const QString config =
      told("scontrol", siteOptions({"clusters"}) + QStringList{"show", "config"});
  const QString line = config.section("MaxArraySize", 1).section('\n', 0, 0);
  const auto allowed = static_cast<std::size_t>(line.section('=', 1).trimmed().toULongLong());
  const std::size_t tasks = allowed == 0 ? mostTasks : std::min(mostTasks, allowed);
  return std::max<std::size_t>(1, (items + tasks - 1) / tasks);
}

void SlurmArray::submit(const std::string& name, const std::string& lines, std::size_t tasks) {
  const std::string script = m_folder + "/task.sh";
  WholeFile(script).write("#!/bin/sh\n" + lines);
  const QString folder = QFile::decodeName(m_folder.c_str());
  QStringList arguments{"--parsable",
                        "--requeue",
                        "--open-mode=append",
                        QString("--array=0-%1").arg(tasks - 1),
                        "--job-name=" + QString::fromStdString(name),
                        "--chdir=" + QFile::decodeName(fs::current_path().c_str()),
                        "--output=" + folder + "/%A_%a.txt"};
  arguments << siteOptions() << QFile::decodeName(script.c_str());
  const QString job = told("sbatch", arguments).trimmed();
  takeJob(job);
  WholeFile(m_folder + jobFile).write(job.toStdString() + "\n");
}

/// A job's number as sbatch tells it, with ";" and the cluster if that is not the usual one.
void SlurmArray::takeJob(const QString& text) {
  m_job = text.section(';', 0, 0);
  m_cluster = text.section(';', 1, 1);
}

/// False when no submission has left a job in the folder.
bool SlurmArray::readJob() {
  QFile file(QFile::decodeName((m_folder + jobFile).c_str()));
  const bool isThere = file.open(QIODevice::ReadOnly);
  takeJob(isThere ? QString(file.readAll()).trimmed() : QString());
  return !m_job.isEmpty();
}

bool SlurmArray::takeUp() {
  const auto now = readJob() ? answered() : std::nullopt;
  return now && now->left > 0;
}

void SlurmArray::cancelEarlier() {
  readJob() ? cancel() : void();
}

/// Those of a command that is about the job's cluster.
QStringList SlurmArray::arguments(const QStringList& more) const {
  return m_cluster.isEmpty() ? more : QStringList{"-M", m_cluster} + more;
}

/// None when Slurm does not answer. A job that it knows no more has ended long ago.
std::optional<SlurmArray::State> SlurmArray::state() const {
  const Answer answer = ask("squeue", arguments({"-h", "-r", "-j", m_job, "-o", "%t %r"}));
  if (answer.status != 0) {
    return answer.errors.contains("Invalid job id") ? std::optional(State()) : std::nullopt;
  }
  State state;
  for (const QString& line : answer.text.split('\n', Qt::SkipEmptyParts)) {
    if (line.startsWith("CLUSTER:")) {
      continue;
    }
    ++state.left;
    const QString reason = line.section(' ', 1);
    if (!line.startsWith("PD")) {
      ++state.running;
    } else if (!state.isHeld) {
      state.isHeld = isHold(reason);
      state.reason = reason.toStdString();
    }
  }
  return state;
}

/// Asks until Slurm answers; none when a stop is wished before.
std::optional<SlurmArray::State> SlurmArray::answered() const {
  constexpr int mostSilence = 600'000;  // ms
  int pause = shortestPause;
  for (int silence = 0; silence <= mostSilence; silence += pause, pause = longer(pause)) {
    if (auto now = state()) {
      return now;
    }
    stop_wish::waitFor(-1, 0, pause);
    if (stop_wish::isThere()) {
      return std::nullopt;
    }
  }
  throw OutputError("squeue", "does not answer any more; job " + job() + " may go on");
}

bool SlurmArray::follow(const std::function<void(const State&)>& look) const {
  constexpr int longEnough = 60'000;  // ms without a running task, to wonder why
  int idle = 0;
  for (int pause = shortestPause;; pause = longer(pause)) {
    stop_wish::waitFor(-1, 0, pause);
    auto now = stop_wish::isThere() ? std::nullopt : answered();
    if (!now) {
      return false;
    }
    idle = now->running > 0 ? 0 : idle + pause;
    if (!now->isHeld && idle < longEnough) {
      now->reason.clear();
    }
    look(*now);
    if (now->left == 0) {
      return true;
    }
  }
}

void SlurmArray::cancel() const {
  ask("scancel", arguments({m_job}));
}

std::string SlurmArray::quoted(const std::string& word) {
  std::string text = "'";
  for (const char letter : word) {
    text += letter == '\'' ? "'\\''" : std::string(1, letter);
  }
  return text + "'";
}

}  // namespace grouptracker
