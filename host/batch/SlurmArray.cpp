#include "host/batch/SlurmArray.h"

#include "host/base/Interruption.h"
#include "host/base/OutputPlace.h"
#include "host/output/WholeFile.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QSysInfo>
#include <fmt/format.h>

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

/// Why a task that waits never goes on by itself.
bool isHeld(const QString& reason) {
  return reason.contains("held", Qt::CaseInsensitive);
}

const char* const jobFile = "/job";

}  // namespace

SlurmArray::SlurmArray(const std::string& folder, const std::vector<std::string>& siteOptions)
    : m_folder(folder), m_siteOptions(siteOptions) {
  std::error_code problem;
  fs::create_directories(folder, problem);
  if (problem) {
    throw OutputError(folder, "cannot be made: " + problem.message());
  }
}

void SlurmArray::checkFolder() const {
  QStringList arguments{"-h", "-N", "-o", "%N %n"};
  for (const std::string& option : m_siteOptions) {
    if (option.starts_with("partition=")) {
      arguments << QString::fromStdString("--" + option);
    }
  }
  const QString here = shortName(QSysInfo::machineHostName());
  for (const QString& line : told("sinfo", arguments).split('\n', Qt::SkipEmptyParts)) {
    const QString node = line.section(' ', 0, 0);
    if (shortName(line.section(' ', 1, 1)) == here) {
      continue;
    }
    if (!isOfThisMachine(m_folder)) {
      return;
    }
    // A disk of this machine may be seen there nevertheless, when this one serves it.
    const Answer probe = ask("srun", {"--quiet", "--nodelist=" + node, "-n1", "--immediate=20",
                                      "test", "-d", QString::fromStdString(m_folder)});
    if (probe.status != 0) {
      throw OutputError(m_folder, "lies on a disk of this machine, which node " +
                                      node.toStdString() +
                                      " does not see; a folder that all share is needed");
    }
    return;
  }
}

std::size_t SlurmArray::itemsOfTask(std::size_t items) const {
  constexpr std::size_t mostTasks = 1000;
  const QString config = told("scontrol", {"show", "config"});
  const QString line = config.section("MaxArraySize", 1).section('\n', 0, 0);
  const auto allowed = static_cast<std::size_t>(line.section('=', 1).trimmed().toULongLong());
  const std::size_t tasks = allowed == 0 ? mostTasks : std::min(mostTasks, allowed);
  return std::max<std::size_t>(1, (items + tasks - 1) / tasks);
}

void SlurmArray::submit(const std::string& name, const std::string& lines, std::size_t tasks) {
  const std::string script = m_folder + "/task.sh";
  WholeFile(script).write("#!/bin/sh\n" + lines);
  const QString folder = QString::fromStdString(m_folder);
  QStringList arguments{"--parsable",
                        "--requeue",
                        "--open-mode=append",
                        QString("--array=0-%1").arg(tasks - 1),
                        "--job-name=" + QString::fromStdString(name),
                        "--chdir=" + QString::fromStdString(fs::current_path()),
                        "--output=" + folder + "/%A_%a.txt"};
  for (const std::string& option : m_siteOptions) {
    arguments << QString::fromStdString("--" + option);
  }
  arguments << QString::fromStdString(script);
  m_job = told("sbatch", arguments).section(';', 0, 0).trimmed().toStdString();
  WholeFile(m_folder + jobFile).write(m_job + "\n");
}

bool SlurmArray::takeUp() {
  QFile file(QString::fromStdString(m_folder + jobFile));
  if (!file.open(QIODevice::ReadOnly)) {
    return false;
  }
  m_job = QString(file.readAll()).trimmed().toStdString();
  const auto now = state();
  return now && now->left > 0;
}

/// None when Slurm does not answer. A job that it knows no more has ended long ago.
std::optional<SlurmArray::State> SlurmArray::state() const {
  const Answer answer =
      ask("squeue", {"-h", "-r", "-j", QString::fromStdString(m_job), "-o", "%t %r"});
  if (answer.status != 0) {
    return answer.errors.contains("Invalid job id") ? std::optional(State()) : std::nullopt;
  }
  State state;
  for (const QString& line : answer.text.split('\n', Qt::SkipEmptyParts)) {
    ++state.left;
    state.held = isHeld(line) ? line.section(' ', 1).toStdString() : state.held;
  }
  return state;
}

bool SlurmArray::follow(const std::function<void(const State&)>& look) const {
  constexpr int shortest = 300;  // ms; longer and longer, to spare the site's controller
  constexpr int longest = 10'000;
  constexpr int mostSilence = 600'000;
  int silence = 0;
  for (int pause = shortest;; pause = std::min(longest, pause + pause / 4)) {
    stop_wish::waitFor(-1, 0, pause);
    if (stop_wish::isThere()) {
      return false;
    }
    const auto now = state();
    silence = now ? 0 : silence + pause;
    if (silence > mostSilence) {
      throw OutputError("squeue", "does not answer any more; job " + m_job + " may go on");
    }
    if (now) {
      look(*now);
    }
    if (now && now->left == 0) {
      return true;
    }
  }
}

void SlurmArray::cancel() const {
  ask("scancel", {QString::fromStdString(m_job)});
}

std::string SlurmArray::quoted(const std::string& word) {
  std::string text = "'";
  for (const char letter : word) {
    text += letter == '\'' ? "'\\''" : std::string(1, letter);
  }
  return text + "'";
}

}  // namespace grouptracker
