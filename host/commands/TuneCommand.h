#pragma once

#include "host/commands/Command.h"
#include "host/commands/TuneSession.h"

namespace grouptracker {

/// `grouptracker tune`: searches for the parameters and links that score best on annotated inputs.
class TuneCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  TuneOptions m_options;
};

}  // namespace grouptracker
