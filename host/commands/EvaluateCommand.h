#pragma once

#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/evaluation/EvaluationReport.h"

#include <string>

namespace grouptracker {

/// `grouptracker evaluate`: scores the groups of a run against annotated ones.
class EvaluateCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  GroupedFrames readRun(const std::string& path, const GroupTruth& truth) const;
  std::string inputOfBaselines() const;

  std::string m_groupsFile;
  std::string m_truthFile;
  std::string m_otherFile;   ///< empty when not wanted
  std::string m_outputFile;  ///< empty when not wanted
  std::string m_errorsFile;  ///< empty when not wanted
  InputChoice m_choice;      ///< for the baselines; the input is empty when not given
  bool m_baselines = false;
  EvaluationOptions m_options;
};

}  // namespace grouptracker
