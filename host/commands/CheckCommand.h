#pragma once

#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/commands/StepOptions.h"
#include "host/commands/check/CheckReport.h"
#include "host/evaluation/ScoredSteps.h"
#include "host/input/InputWatch.h"

#include <string>
#include <vector>

namespace grouptracker {

/// `grouptracker check`: reads all files as a run would, without running, and says on standard
/// output what is wrong and what is suspicious. The exit status is 0 when all is well, 1 with
/// warnings only, 2 with problems.
class CheckCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  void checkFiles(CheckReport& report);
  void checkParameters(CheckReport& report);
  void checkInput(CheckReport& report) const;
  void checkTruth(const GroupedFrames& people, CheckReport& report) const;

  InputChoice m_choice;
  StepOptions m_steps;  ///< what a run would be asked to draw
  std::string m_parameterFile;
  std::vector<std::string> m_parameterChanges;
  std::string m_truthFile;
  std::string m_contextFile;
  InputDemands m_demands;  ///< of the parameters, as soon as they are read
};

}  // namespace grouptracker
