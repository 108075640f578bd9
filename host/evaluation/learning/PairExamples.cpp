#include "host/evaluation/learning/PairExamples.h"

#include <algorithm>

namespace grouptracker {

namespace {

bool areTogether(const Grouping& groups, Person a, Person b) {
  return std::any_of(groups.begin(), groups.end(), [a, b](const PersonGroup& group) {
    return std::binary_search(group.begin(), group.end(), a) &&
           std::binary_search(group.begin(), group.end(), b);
  });
}

}  // namespace

void PairExamples::add(std::int64_t frame, const TickBeliefs& beliefs, const GroupTruth& truth) {
  if (!truth.knows(frame) || m_moments++ % m_every != 0) {
    return;
  }
  const Grouping& groups = truth.at(frame);
  for (const PairBelief& pair : beliefs.pairs) {
    if (!pair.features) {
      continue;
    }
    PairExample example{beliefs.time, areTogether(groups, pair.a, pair.b), m_terms.size(), 0};
    m_momentOf.push_back(m_moments - 1);
    m_shape.forEachTerm(*pair.features, [this](std::size_t weight, double factor) {
      if (factor != 0.0) {
        m_terms.push_back({static_cast<std::uint32_t>(weight), static_cast<float>(factor)});
      }
    });
    example.terms = m_terms.size() - example.firstTerm;
    m_examples.push_back(example);
  }
  while (m_examples.size() > most) {
    thin();
  }
}

/// Leaves every second of the moments that were taken.
void PairExamples::thin() {
  m_every *= 2;
  PairExamples rest(m_shape);
  for (std::size_t i = 0; i < m_examples.size(); ++i) {
    if (m_momentOf[i] % m_every != 0) {
      continue;
    }
    const auto terms = termsOf(m_examples[i]);
    PairExample example = m_examples[i];
    example.firstTerm = rest.m_terms.size();
    rest.m_examples.push_back(example);
    rest.m_momentOf.push_back(m_momentOf[i]);
    rest.m_terms.insert(rest.m_terms.end(), terms.begin(), terms.end());
  }
  m_examples = std::move(rest.m_examples);
  m_momentOf = std::move(rest.m_momentOf);
  m_terms = std::move(rest.m_terms);
}

}  // namespace grouptracker
