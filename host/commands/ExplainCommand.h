#pragma once

#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// `grouptracker explain`: tells from the diagnostics of a run why the process made a group, or
/// from the input why two persons are together, or not.
class ExplainCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  int explainPersons();

  std::string m_diagnosticsFile;  ///< or the input, where two persons are asked for
  std::vector<int> m_persons;     ///< two, or none
  std::string m_modelFile;        ///< empty for the built-in one
  double m_lookAhead = 3.2;       ///< seconds
  InputChoice m_reading;          ///< for two persons
  std::string m_dumpFile;
  std::string m_parameterFile;
  std::optional<int> m_group;
  std::optional<std::int32_t> m_frame;
  std::optional<std::size_t> m_uncertain;
};

}  // namespace grouptracker
