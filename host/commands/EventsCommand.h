#pragma once

#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/commands/StepOptions.h"

#include <string>

namespace grouptracker {

/// `grouptracker events`: finds in the groups file of a run what happened to the groups, the same
/// events that the run itself writes.
class EventsCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  std::string m_groupsFile;
  std::string m_outputFile;  ///< standard output when empty
  InputChoice m_choice;      ///< of the run's input, which may be left out
  StepOptions m_steps;
};

}  // namespace grouptracker
