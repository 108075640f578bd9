#pragma once

#include "host/commands/Command.h"
#include "host/simulation/SimulationOptions.h"

namespace grouptracker {

/// `grouptracker simulate`: makes a scene with known groups.
class SimulateCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  SimulationOptions m_options;
  bool m_isQuiet = false;
};

}  // namespace grouptracker
