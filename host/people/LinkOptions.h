#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

namespace grouptracker {

/// How observations are linked to earlier ones when the input itself has no links. The defaults
/// were found together with samples/parameters/walking.txt; docs/evaluation.md has the scores.
struct LinkOptions {
  /// Observations of a person that its actor lists. A tracker follows the links to neighbours only
  /// of a person without listed earlier observations, so more than one means that a third person
  /// can join a pair at its first observation only.
  std::size_t chainLength = 1;
  std::size_t ownLinks = 1;  ///< latest observations of the person itself that are linked

  /// Links to other persons' observations of the step before, without which a third person can
  /// hardly join a pair: the reliability falls from `neighbourStrength` at distance 0 to nothing at
  /// `neighbourRadius`.
  double neighbourStrength = 0.9;
  double neighbourRadius = 2.26;  ///< metres
  /// It also falls to nothing when the displacements of the two over the last `motionSteps` steps
  /// differ by this part of their mean length, which does not depend on the frame rate. Those who
  /// stand or just appeared are not linked.
  double motionDifference = 0.54;  ///< 0 leaves the motion aside
  std::size_t motionSteps = 6;
  std::size_t neighbourLinks = 2;  ///< at most so many, the most reliable ones

  /// Above 0, links lead to those with whom a person belongs together, by what the evidence about
  /// pairs of people says of what was seen so far, and to no other neighbours. The reliability is
  /// this part of how sure that is.
  double evidenceStrength = 0.0;
};

/// For those who want to know where everybody is and no more: without the process nobody looks at
/// links.
inline constexpr LinkOptions withoutLinks{.ownLinks = 0, .motionSteps = 0, .neighbourLinks = 0};

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
