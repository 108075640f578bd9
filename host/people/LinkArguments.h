#pragma once

#include "host/people/LinkOptions.h"

#include <string>
#include <variant>
#include <vector>

namespace grouptracker {

/// A link option as the command line has it.
struct LinkArgument {
  const char* name;
  const char* meaning;
  std::variant<std::size_t LinkOptions::*, double LinkOptions::*> member;
};

/// All link options, for whoever reads or changes them by name.
const std::vector<LinkArgument>& linkArguments();

/// The value of an option; false for a name that is none.
bool linkArgument(const LinkOptions& options, const std::string& name, double& value);
/// Sets an option; false for a name that is none.
bool setLinkArgument(LinkOptions& options, const std::string& name, double value);

}  // namespace grouptracker
