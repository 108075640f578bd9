#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace grouptracker {

/// Whether probabilities mean what they say: of what is told with probability 0.7, seven in ten
/// should be true [DeGroot and Fienberg 1983]. Probabilities are gathered in ten bins.
class CalibrationCurve {
 public:
  struct Bin {
    double count = 0.0;    ///< what was told, by how much it counts
    double told = 0.0;     ///< sum of the probabilities
    double correct = 0.0;  ///< of these, true

    double meanTold() const { return count > 0.0 ? told / count : 0.0; }
    double share() const { return count > 0.0 ? correct / count : 0.0; }
  };

  void add(double probability, double correct, double count);

  const std::array<Bin, 10>& bins() const { return m_bins; }
  /// Mean difference between what is told and what is true, by how often it is told.
  double error() const;

 private:
  std::array<Bin, 10> m_bins;
};

struct NamedCurve {
  std::string name;
  CalibrationCurve curve;
};

/// A table for people: what the curves have in each bin, and their errors.
std::string tableOf(const std::vector<NamedCurve>& curves);
/// A picture of the curves, SVG.
std::string pictureOf(const std::vector<NamedCurve>& curves);

}  // namespace grouptracker
