#pragma once

#include <cstddef>
#include <vector>

namespace grouptracker {

/// A number for each pair among some persons, who are numbered from 0.
class PairScores {
 public:
  PairScores(std::size_t persons, double score)
      : m_persons(persons), m_scores(persons * persons, score) {}

  std::size_t persons() const { return m_persons; }
  double at(std::size_t a, std::size_t b) const { return m_scores[a * m_persons + b]; }
  void set(std::size_t a, std::size_t b, double score);

 private:
  std::size_t m_persons;
  std::vector<double> m_scores;
};

/// The numbers of persons who are together, ascending.
using Cluster = std::vector<std::size_t>;

/// Splits persons into clusters by average linkage: the two clusters whose pairs have the highest
/// mean score become one, as long as that is above 0. One common neighbour therefore does not chain
/// strangers together. Whoever remains single is left out. Among equals the first in order counts;
/// clusters come in the order of their first persons.
std::vector<Cluster> linkByAverage(const PairScores& scores);

/// The mean score of the pairs of a cluster of two and more.
double meanScore(const Cluster& cluster, const PairScores& scores);

}  // namespace grouptracker
