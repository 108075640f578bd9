#pragma once

#include "host/commands/Command.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace grouptracker {

/// `grouptracker explain`: tells from the diagnostics of a run why a group is what it is.
class ExplainCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  std::string m_diagnosticsFile;
  std::string m_dumpFile;
  std::string m_parameterFile;
  std::optional<int> m_group;
  std::optional<std::int32_t> m_frame;
  std::optional<std::size_t> m_uncertain;
};

}  // namespace grouptracker
