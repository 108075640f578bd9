#pragma once

#include "host/commands/Command.h"
#include "host/simulation/SimulationOptions.h"

#include <optional>

namespace grouptracker {

/// `grouptracker simulate`: makes a scene with known groups.
class SimulateCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  SimulationOptions m_options;
  std::optional<int> m_frames;
  bool m_isQuiet = false;
};

}  // namespace grouptracker
