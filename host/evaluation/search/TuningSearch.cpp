#include "host/evaluation/search/TuningSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t rounds = 4;          // more find narrower regions, which carry over less
constexpr std::size_t smallestRound = 12;  // trials; fewer say nothing about a region
constexpr std::size_t elite = 4;           // one of so many shapes the next round
constexpr double renewed = 0.8;            // share of the newest round in the distribution
constexpr double smallestSpread = 0.03;    // of a range
constexpr double worthless = -std::numeric_limits<double>::infinity();

}  // namespace

TuningSearch::TuningSearch(const TuningSpace& space, SearchOptions options)
    : m_space(space),
      m_options(options),
      m_random(options.seed),
      m_middle(space.values().size(), 0.5),
      m_spread(space.values().size(), 0.5) {}

SearchResult TuningSearch::run(const Evaluate& evaluate) {
  SearchResult result;
  const std::size_t roundSize = std::max(smallestRound, m_options.trials / rounds);
  while (m_tried + 1 < m_options.trials) {
    const bool isFirst = m_tried == 0;
    const auto drawn = draw(std::min(roundSize, m_options.trials - 1 - m_tried), isFirst);
    std::vector<Trial> trials;
    trials.reserve(drawn.size());
    for (const Places& places : drawn) {
      trials.push_back({++m_tried, candidateAt(places), {}});
    }
    evaluate(trials);
    const auto ranking = ranked(trials);
    if (!ranking.empty() && worth(trials[ranking.front()]) > worth(result.best)) {
      result.best = trials[ranking.front()];
    }
    narrow(ranking, drawn, isFirst);
  }
  std::vector<Trial> middle{{++m_tried, candidateAt(m_middle), {}}};
  evaluate(middle);
  if (worth(middle.front()) > worthless) {
    result.middle = middle.front();
  }
  return result;
}

double TuningSearch::worth(const Trial& trial) const {
  if (trial.scores.empty()) {
    return worthless;
  }
  double sum = 0.0;
  double worst = std::numeric_limits<double>::infinity();
  for (const auto& score : trial.scores) {
    if (!score) {
      return worthless;
    }
    sum += *score;
    worst = std::min(worst, *score);
  }
  const auto count = static_cast<double>(trial.scores.size());
  return (1.0 - m_options.worstShare) * sum / count + m_options.worstShare * worst;
}

std::vector<TuningSearch::Places> TuningSearch::draw(std::size_t count, bool isFirst) {
  std::vector<Places> drawn(count, Places(m_middle.size()));
  for (Places& places : drawn) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      // Again instead of cutting off, or the ends of the ranges would be tried far too often.
      do {
        places[i] =
            isFirst ? m_random.uniform(0.0, 1.0) : m_middle[i] + m_random.normal(m_spread[i]);
      } while (places[i] < 0.0 || places[i] > 1.0);
    }
  }
  return drawn;
}

void TuningSearch::narrow(std::vector<std::size_t> ranking, const std::vector<Places>& drawn,
                          bool isFirst) {
  ranking.resize(std::min(ranking.size(), drawn.size() / elite));
  if (ranking.size() < 2) {
    return;
  }
  const auto count = static_cast<double>(ranking.size());
  const double share = isFirst ? 1.0 : renewed;
  for (std::size_t i = 0; i < m_middle.size(); ++i) {
    double middle = 0.0;
    double variance = 0.0;
    for (const std::size_t trial : ranking) {
      middle += drawn[trial][i] / count;
    }
    for (const std::size_t trial : ranking) {
      variance += (drawn[trial][i] - middle) * (drawn[trial][i] - middle) / count;
    }
    m_middle[i] += share * (middle - m_middle[i]);
    m_spread[i] += share * (std::sqrt(variance) - m_spread[i]);
    m_spread[i] = std::max(m_spread[i], smallestSpread);
  }
}

/// The places of the trials that did not die, the best first.
std::vector<std::size_t> TuningSearch::ranked(const std::vector<Trial>& trials) const {
  std::vector<std::size_t> ranking(trials.size());
  std::iota(ranking.begin(), ranking.end(), std::size_t{0});
  std::erase_if(ranking, [&](std::size_t trial) { return worth(trials[trial]) == worthless; });
  std::stable_sort(ranking.begin(), ranking.end(), [&](std::size_t a, std::size_t b) {
    return worth(trials[a]) > worth(trials[b]);
  });
  return ranking;
}

Candidate TuningSearch::candidateAt(const Places& places) const {
  Candidate candidate;
  for (std::size_t i = 0; i < places.size(); ++i) {
    candidate.push_back(TuningSpace::atPlace(m_space.values()[i], places[i]));
  }
  return candidate;
}

}  // namespace grouptracker
