#pragma once

#include "host/grouping/PairFeatures.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace grouptracker {

/// How strongly what was seen of two persons speaks for their belonging together: a sum of flags
/// and of curves, piecewise linear in one feature each and constant outside their knots. As a file:
///
///     {"learnedFrom": ["seq_eth", "seq_hotel"],
///      "flags": {"intercept": -1.2, "standing": -0.1, "start": -0.2, "startStanding": 0.01,
///                "appeared": -0.2, "appearedStanding": -0.05},
///      "features": {"meanDistance": {"knots": [0.4, 1, 5], "always": [0.4, 0.1, -0.3],
///                                    "standing": [0.1, 0, 0]}, ...}}
///
/// `always` counts as it is, `standing`, `start` and `appeared` in proportion to these marks of the
/// pair; each has one weight a knot, log-odds. All features must be there; other keys are passed
/// over. What is missing or wrong is an `InputError` with file and line.
class EvidenceModel {
 public:
  /// The model that is used when no other is asked for.
  static EvidenceModel builtIn();
  static EvidenceModel read(const std::string& path);
  static EvidenceModel read(std::istream& in, const std::string& name);

  /// The log-odds that two persons belong together.
  double logOdds(const PairFeatures& features) const;
  /// Calls `use(index, factor)` for each weight that counts, in ascending order: the log-odds are
  /// the sum of the weights times their factors.
  template <typename Use>
  void forEachTerm(const PairFeatures& features, const Use& use) const;

  /// What each of `pairFeatures` adds to the log-odds; the flags add the rest.
  std::array<double, pairFeatures.size()> contributions(const PairFeatures& features) const;

  /// All weights, flags first, in the order of the file. The first is the intercept.
  const std::vector<double>& weights() const { return m_weights; }
  void setWeights(std::vector<double> weights) { m_weights = std::move(weights); }
  /// What it was learned from, for people.
  const std::vector<std::string>& learnedFrom() const { return m_learnedFrom; }
  void setLearnedFrom(std::vector<std::string> names) { m_learnedFrom = std::move(names); }
  /// The file's text; reads as the same model.
  std::string text() const;

 private:
  friend class EvidenceModelReader;

  enum class Mark : std::uint8_t { always, standing, start, appeared };
  static constexpr std::array markNames{"always", "standing", "start", "appeared"};
  static constexpr std::array flagNames{"intercept",     "standing", "start",
                                        "startStanding", "appeared", "appearedStanding"};

  /// The weights of a curve that count in proportion to one mark.
  struct Line {
    Mark mark = Mark::always;
    std::size_t first = 0;  ///< index of the first knot's weight
  };
  struct Curve {
    std::vector<double> knots;  ///< ascending, two or more
    std::vector<Line> lines;
  };
  /// A place between two knots.
  struct Position {
    std::size_t knot = 0;   ///< the lower one
    double fraction = 0.0;  ///< of the way to the next
  };

  /// In proportion to what the lines of a curve count, by their marks.
  using Factors = std::array<double, markNames.size()>;

  static std::array<double, flagNames.size()> flagsOf(const PairFeatures& features);
  static Factors factorsOf(const PairFeatures& features, bool needsArrivals);
  static Position positionOf(double value, const std::vector<double>& knots);

  std::array<Curve, pairFeatures.size()> m_curves;  ///< in the order of `pairFeatures`
  std::vector<double> m_weights;
  std::vector<std::string> m_learnedFrom;
};

template <typename Use>
void EvidenceModel::forEachTerm(const PairFeatures& features, const Use& use) const {
  const auto flags = flagsOf(features);
  for (std::size_t i = 0; i < flags.size(); ++i) {
    use(i, flags[i]);
  }
  const Factors usual = factorsOf(features, false);
  const Factors ofArrivals = factorsOf(features, true);
  for (std::size_t i = 0; i < m_curves.size(); ++i) {
    const PairFeature& feature = pairFeatures[i];
    const Factors& factors = feature.needsArrivals ? ofArrivals : usual;
    const Position at = positionOf(features.*feature.value, m_curves[i].knots);
    for (const Line& line : m_curves[i].lines) {
      const double factor = factors[static_cast<std::size_t>(line.mark)];
      if (factor == 0.0) {
        continue;
      }
      use(line.first + at.knot, (1.0 - at.fraction) * factor);
      use(line.first + at.knot + 1, at.fraction * factor);
    }
  }
}

}  // namespace grouptracker
