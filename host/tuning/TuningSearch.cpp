#include "TuningSearch.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr double shortPart = 0.25;   // of the sequences, for the first look at a candidate
constexpr std::size_t halving = 4;   // one of so many is looked at closer
constexpr std::size_t batch = 12;    // trials between two looks at the best; not the workers'
constexpr std::size_t parents = 8;   // best ones around which is searched
constexpr double firstReach = 0.15;  // of a value's range
constexpr double smallestReach = 0.02;
constexpr double changedShare = 0.2;  // of the values in one step

}  // namespace

Trial TuningSearch::run(const Evaluate& evaluate) {
  searchRandomly(evaluate);
  refine(evaluate);
  return m_best.empty() ? Trial() : m_best.front();
}

double TuningSearch::worth(const Trial& trial) const {
  double sum = 0.0;
  double worst = std::numeric_limits<double>::infinity();
  for (const auto& score : trial.scores) {
    if (!score) {
      return -std::numeric_limits<double>::infinity();
    }
    sum += *score;
    worst = std::min(worst, *score);
  }
  const auto count = static_cast<double>(trial.scores.size());
  return (1.0 - m_options.worstShare) * sum / count + m_options.worstShare * worst;
}

void TuningSearch::searchRandomly(const Evaluate& evaluate) {
  std::vector<Candidate> candidates{m_base};
  while (candidates.size() < m_options.trials / 2) {
    candidates.push_back(anywhere());
  }
  const auto quick = tryAll(candidates, shortPart, evaluate);
  candidates = {m_base};
  for (const Trial& trial : bestOf(quick, candidates.size() + quick.size() / halving)) {
    if (trial.candidate != m_base) {
      candidates.push_back(trial.candidate);
    }
  }
  m_best = bestOf(tryAll(candidates, 1.0, evaluate), parents);
}

void TuningSearch::refine(const Evaluate& evaluate) {
  double reach = firstReach;
  while (m_tried < m_options.trials && !m_best.empty()) {
    std::vector<Candidate> candidates;
    while (candidates.size() < std::min(batch, m_options.trials - m_tried)) {
      // The product of two places prefers the best ones.
      const double place = uniform() * uniform() * static_cast<double>(m_best.size());
      candidates.push_back(near(m_best[static_cast<std::size_t>(place)].candidate, reach));
    }
    const double before = worth(m_best.front());
    auto trials = tryAll(candidates, 1.0, evaluate);
    trials.insert(trials.end(), m_best.begin(), m_best.end());
    m_best = bestOf(std::move(trials), parents);
    const bool isBetter = worth(m_best.front()) > before;
    reach = isBetter ? std::min(firstReach, reach * 1.5) : std::max(smallestReach, reach * 0.8);
  }
}

std::vector<Trial> TuningSearch::tryAll(const std::vector<Candidate>& candidates, double part,
                                        const Evaluate& evaluate) {
  std::vector<Trial> trials;
  for (const Candidate& candidate : candidates) {
    trials.push_back({++m_tried, part, candidate, {}});
  }
  evaluate(trials);
  return trials;
}

std::vector<Trial> TuningSearch::bestOf(std::vector<Trial> trials, std::size_t count) const {
  std::sort(trials.begin(), trials.end(), [this](const Trial& a, const Trial& b) {
    return std::pair(-worth(a), a.number) < std::pair(-worth(b), b.number);
  });
  std::erase_if(trials, [this](const Trial& trial) {
    return worth(trial) == -std::numeric_limits<double>::infinity();
  });
  trials.resize(std::min(trials.size(), count));
  return trials;
}

// Not the standard distributions, whose numbers differ from library to library.
double TuningSearch::uniform() {
  constexpr int mantissa = 53;
  return static_cast<double>(m_random() >> (64 - mantissa)) /
         static_cast<double>(std::uint64_t{1} << mantissa);
}

Candidate TuningSearch::anywhere() {
  Candidate candidate;
  for (const TunedValue& value : m_space.values()) {
    candidate.push_back(TuningSpace::atPlace(value, uniform()));
  }
  return candidate;
}

Candidate TuningSearch::near(const Candidate& center, double reach) {
  constexpr int terms = 12;  // uniform numbers whose sum is close to normal, with variance 1
  Candidate candidate = center;
  const auto& values = m_space.values();
  const auto certain = static_cast<std::size_t>(uniform() * static_cast<double>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i != certain && uniform() > changedShare) {
      continue;
    }
    double normal = -terms / 2.0;
    for (int term = 0; term < terms; ++term) {
      normal += uniform();
    }
    const TunedValue& value = values[i];
    // A whole number would hardly ever change by a small step.
    const double range = value.high - value.low;
    const double least = value.scale == TunedValue::Scale::whole && range > 0.0 ? 0.7 / range : 0.0;
    const double place = TuningSpace::placeOf(value, center[i]);
    candidate[i] = TuningSpace::atPlace(value, place + normal * std::max(reach, least));
  }
  return candidate;
}
