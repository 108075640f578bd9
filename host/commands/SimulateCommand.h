#pragma once

#include "Command.h"
#include "SimulationOptions.h"

/// `grouptracker simulate`: makes a scene with known groups.
class SimulateCommand : public Command {
 public:
  CLI::App* declare(CLI::App& program) override;
  int run() override;

 private:
  SimulationOptions m_options;
  bool m_isQuiet = false;
};
