#pragma once

#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/commands/check/CheckReport.h"
#include "host/input/InputWatch.h"

#include <string>

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

  InputChoice m_choice;
  std::string m_parameterFile;
  std::string m_contextFile;
  InputDemands m_demands;  ///< of the parameters, as soon as they are read
};

}  // namespace grouptracker
