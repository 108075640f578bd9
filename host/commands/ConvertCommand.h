#pragma once

#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"

#include <string>

namespace grouptracker {

/// `grouptracker convert`: writes any input as a scene file that a run takes as it would the input.
class ConvertCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  InputChoice m_choice;
  std::string m_outputFile;
};

}  // namespace grouptracker
