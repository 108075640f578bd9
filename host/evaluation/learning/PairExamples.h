#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/grouping/EvidenceModel.h"
#include "host/grouping/PairEvidence.h"
#include "host/grouping/PeopleFrame.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace grouptracker {

/// Two persons at one moment: what was seen of them, as the model's weights see it, and whether
/// they belong together.
struct PairExample {
  double time = 0.0;  ///< seconds
  bool isTogether = false;
  std::size_t firstTerm = 0;
  std::size_t terms = 0;
};

/// The pairs of an annotated recording out of which a model is learned. Moments follow each other
/// closely and say much the same, so that of a long recording only every second, third ...
/// annotated moment is taken, until there are no more than `most` examples.
class PairExamples {
 public:
  static constexpr std::size_t most = 16000;

  /// A weight of the model, and the factor with which it counts in the log-odds.
  struct Term {
    std::uint32_t weight = 0;
    float factor = 0.0F;
  };

  /// `shape`: a model with the curves that are learned; its weights do not count.
  explicit PairExamples(EvidenceModel shape) : m_shape(std::move(shape)) {}

  /// Takes the pairs of a moment that are near enough to be together; moments come in order.
  void add(std::int64_t frame, const TickBeliefs& beliefs, const GroupTruth& truth);

  /// Ascending in time.
  const std::vector<PairExample>& examples() const { return m_examples; }
  std::span<const Term> termsOf(const PairExample& example) const {
    return {m_terms.data() + example.firstTerm, example.terms};
  }

 private:
  void thin();

  EvidenceModel m_shape;
  std::size_t m_moments = 0;  ///< annotated ones so far
  std::size_t m_every = 1;    ///< of these, every how manieth is taken
  std::vector<PairExample> m_examples;
  std::vector<std::size_t> m_momentOf;  ///< number of each example's annotated moment
  std::vector<Term> m_terms;
};

}  // namespace grouptracker
