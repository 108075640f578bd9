#pragma once

#include "host/commands/Command.h"

#include <string>

namespace grouptracker {

/// `grouptracker report`: makes one HTML file that shows a run.
class ReportCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  std::string m_input;
  std::string m_groupsFile;
  std::string m_outputFile;
  std::string m_calibrationFile;
  std::string m_imageFolder;  ///< or "none"
  std::string m_truthFile;
  std::string m_diagnosticsFile;
  std::string m_parameterFile;
  double m_framesPerSecond = 0.0;
};

}  // namespace grouptracker
