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

/// What speaks for two of some persons.
struct PersonLink {
  std::size_t a = 0;  ///< their numbers
  std::size_t b = 0;
  double belief = 0.0;
  double score = 0.0;  ///< by which they are linked
};

/// Persons whom a chain of scores above 0 connects. Those of two islands have no such score among
/// them, and so no mean above 0 either: they are never in one cluster.
struct PersonIsland {
  std::vector<std::size_t> people;  ///< their numbers among all persons, ascending
  PairScores scores;                ///< of the pairs of `people`, who are numbered anew
  PairScores beliefs;
};

/// The islands of two persons and more, in the order of their first persons. A pair without a link
/// has `otherwise`, 0 or less, as score and belief.
std::vector<PersonIsland> islandsOf(const std::vector<PersonLink>& links, std::size_t persons,
                                    double otherwise);

/// The mean score of the pairs of a cluster of two and more.
double meanScore(const Cluster& cluster, const PairScores& scores);

}  // namespace grouptracker
