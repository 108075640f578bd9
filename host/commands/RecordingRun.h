#pragma once

#include "host/batch/BatchFolder.h"
#include "host/batch/Recording.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Makes one recording of a batch: runs it, scores it against its truth, makes the report, and puts
/// all in its place. To be called in a process of its own, of which it takes working folder,
/// standard input and standard error.
class RecordingRun {
 public:
  /// `wishes` are those of the batch for all recordings, `withReport` is one of them; `work` is the
  /// path of a folder to make it in.
  RecordingRun(const Recording& recording, const BatchFolder& folder,
               std::vector<std::string> wishes, std::string work);

  static constexpr const char* withReport = "--report";

  /// Returns what is wrong, which is then in the recording's result, too; empty when it is done. A
  /// wish to stop is an `Interruption`.
  std::string make();

 private:
  std::string makeWhole();
  void takeProcess() const;
  void run();
  void score();
  void report() const;
  std::string made(const char* file) const { return m_work + "/" + file; }

  const Recording& m_recording;
  const BatchFolder& m_folder;
  std::vector<std::string> m_wishes;
  std::string m_work;
  RecordingResult m_result;
};

/// Whether `run` takes an option, given as `--name=value`; what is wrong with it if not.
class RunOptionCheck {
 public:
  RunOptionCheck();
  RunOptionCheck(const RunOptionCheck&) = delete;
  RunOptionCheck& operator=(const RunOptionCheck&) = delete;
  ~RunOptionCheck();

  const std::vector<OptionKind>& kinds() const;
  std::optional<std::string> problemIn(const std::string& option);

 private:
  struct Parser;
  std::unique_ptr<Parser> m_parser;
};

}  // namespace grouptracker
