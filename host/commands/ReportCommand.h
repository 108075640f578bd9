#pragma once

#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"

#include <string>

namespace grouptracker {

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

}  // namespace grouptracker
