#pragma once

#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"

#include <string>
#include <vector>

namespace grouptracker {

/// `grouptracker learn`: learns from annotated inputs what speaks for two people's belonging
/// together.
class LearnCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  void say(const std::string& what) const;

  std::vector<std::string> m_sequences;  ///< INPUT:TRUTH or INPUT:TRUTH:RATE
  std::string m_outputFile;
  std::string m_pictureFile;  ///< empty when not wanted
  double m_ridge = 30.0;
  double m_lookAhead = 3.2;  ///< seconds
  bool m_quiet = false;
  InputChoice m_reading;  ///< of all inputs
};

}  // namespace grouptracker
