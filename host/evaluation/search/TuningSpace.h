#pragma once

#include "host/people/LinkOptions.h"
#include "host/run/ParameterFile.h"

#include <istream>
#include <string>
#include <vector>

namespace grouptracker {

/// One value that a search may change, and how far.
struct TunedValue {
  enum class Scale { linear, logarithmic, whole };

  /// A label of the parameter file, or a link option of `run` such as "--neighbour-links".
  std::string name;
  double low = 0.0;
  double high = 0.0;
  Scale scale = Scale::linear;
};

/// One value for each of the tuned ones, in their order.
using Candidate = std::vector<double>;

/// What a run needs to know of a candidate.
struct TrialSettings {
  std::string parameters;  ///< the text of a parameter file
  LinkOptions links;
  std::string linkArguments;  ///< the links as arguments of `run`
};

/// The values that are tuned. "temporalWinForRemoval:" counts from "temporalWinSize:" on, since a
/// history that ends before the processed frame finds nothing; when only the latter is tuned, the
/// difference stays that of the base.
class TuningSpace {
 public:
  /// The values that matter for groups by pairs or, with `byClusters`, by clusters.
  static TuningSpace standard(bool byClusters);
  /// Reads one value a line, `name low high linear|logarithmic|whole`; empty lines and those that
  /// start with # are passed over. Bad input is an `InputError`.
  static TuningSpace read(std::istream& in, const std::string& name);

  /// The links of which those that are tuned are changed.
  void startFrom(const LinkOptions& links) { m_links = links; }
  const std::vector<TunedValue>& values() const { return m_values; }
  /// The place from 0 to 1 within the range of a value, and back; what comes back is rounded to
  /// three digits, or to a whole number, and never leaves the range.
  static double placeOf(const TunedValue& value, double number);
  static double atPlace(const TunedValue& value, double place);
  /// The candidate that changes nothing, with what lies outside a range brought to its ends.
  Candidate baseOf(const ParameterFile& base) const;
  /// What a run gets for a candidate; for an empty one, the base as it is.
  TrialSettings settingsOf(const Candidate& candidate, const ParameterFile& base) const;

 private:
  std::vector<TunedValue> m_values;
  LinkOptions m_links;
};

}  // namespace grouptracker
