#include "host/people/LinkOptions.h"

#include <type_traits>

namespace grouptracker {

const std::vector<LinkArgument>& linkArguments() {
  static const std::vector<LinkArgument> arguments{
      {"--chain",
       "observations of a person that its actor lists; neighbours' links count only for "
       "a person whose earlier ones are not listed",
       &LinkOptions::chainLength},
      {"--own-links", "a person's latest observations that are linked", &LinkOptions::ownLinks},
      {"--neighbour-links", "reliability of a link to a neighbour at distance 0",
       &LinkOptions::neighbourStrength},
      {"--neighbour-radius", "distance in metres at which neighbours are not linked any more",
       &LinkOptions::neighbourRadius},
      {"--neighbour-count", "neighbours that are linked at most", &LinkOptions::neighbourLinks},
      {"--motion-difference",
       "part of their length by which the ways of neighbours differ that are not linked any more; "
       "0 leaves their motion aside",
       &LinkOptions::motionDifference},
      {"--motion-steps", "time steps over which the ways of neighbours are compared",
       &LinkOptions::motionSteps},
      {"--evidence-links",
       "links lead to those with whom a person belongs together, by the evidence about pairs of "
       "what was seen so far, instead of to neighbours who walk alike: the reliability when that "
       "is sure; 0 for neighbours",
       &LinkOptions::evidenceStrength},
  };
  return arguments;
}

namespace {

const LinkArgument* find(const std::string& name) {
  for (const LinkArgument& argument : linkArguments()) {
    if (argument.name == name) {
      return &argument;
    }
  }
  return nullptr;
}

}  // namespace

bool linkArgument(const LinkOptions& options, const std::string& name, double& value) {
  const LinkArgument* const argument = find(name);
  if (argument == nullptr) {
    return false;
  }
  value = std::visit([&](auto member) { return static_cast<double>(options.*member); },
                     argument->member);
  return true;
}

bool setLinkArgument(LinkOptions& options, const std::string& name, double value) {
  const LinkArgument* const argument = find(name);
  if (argument == nullptr) {
    return false;
  }
  std::visit(
      [&](auto member) {
        options.*member = static_cast<std::decay_t<decltype(options.*member)>>(value);
      },
      argument->member);
  return true;
}

}  // namespace grouptracker
