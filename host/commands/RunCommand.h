#pragma once

#include "host/commands/Command.h"
#include "host/commands/RunOptions.h"

#include <string>

namespace grouptracker {

/// `grouptracker run`: feeds an input to the process, frame by frame, and writes the groups.
class RunCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  bool needsScreen() const override { return m_options.steps.showsWindow; }
  int run() override;

 private:
  void completeOptions();
  void printParameters() const;
  void runSession();

  RunOptions m_options;
  bool m_readerLeft = false;
};

}  // namespace grouptracker
