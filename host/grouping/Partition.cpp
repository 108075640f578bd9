#include "host/grouping/Partition.h"

#include "host/base/JoinedSets.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

namespace grouptracker {

namespace {

/// Clusters that grow; a cluster's number is that of its first person.
class Linkage {
 public:
  explicit Linkage(PairScores scores) : m_scores(std::move(scores)) {
    for (std::size_t i = 0; i < m_scores.persons(); ++i) {
      m_clusters.push_back({i});
      m_open.push_back(i);
    }
  }

  bool joinBest() {
    double best = 0.0;
    std::optional<std::pair<std::size_t, std::size_t>> pair;
    for (auto a = m_open.begin(); a != m_open.end(); ++a) {
      for (auto b = a + 1; b != m_open.end(); ++b) {
        if (m_scores.at(*a, *b) > best) {
          best = m_scores.at(*a, *b);
          pair = {*a, *b};
        }
      }
    }
    if (pair) {
      join(pair->first, pair->second);
    }
    return pair.has_value();
  }

  std::vector<Cluster> clusters() const {
    std::vector<Cluster> result;
    for (const std::size_t open : m_open) {
      if (m_clusters[open].size() > 1) {
        result.push_back(m_clusters[open]);
        std::sort(result.back().begin(), result.back().end());
      }
    }
    return result;
  }

 private:
  void join(std::size_t a, std::size_t b) {
    const auto sizeA = static_cast<double>(m_clusters[a].size());
    const auto sizeB = static_cast<double>(m_clusters[b].size());
    for (const std::size_t other : m_open) {
      if (other != a && other != b) {
        const double sum = m_scores.at(a, other) * sizeA + m_scores.at(b, other) * sizeB;
        m_scores.set(a, other, sum / (sizeA + sizeB));
      }
    }
    std::copy(m_clusters[b].begin(), m_clusters[b].end(), std::back_inserter(m_clusters[a]));
    std::erase(m_open, b);
  }

  PairScores m_scores;  ///< between clusters, at their numbers
  std::vector<Cluster> m_clusters;
  std::vector<std::size_t> m_open;  ///< clusters that are in no other, ascending
};

}  // namespace

void PairScores::set(std::size_t a, std::size_t b, double score) {
  m_scores[a * m_persons + b] = score;
  m_scores[b * m_persons + a] = score;
}

std::vector<Cluster> linkByAverage(const PairScores& scores) {
  if (scores.persons() == 2) {  // most who are linked
    return scores.at(0, 1) > 0.0 ? std::vector<Cluster>{{0, 1}} : std::vector<Cluster>();
  }
  Linkage linkage(scores);
  while (linkage.joinBest()) {
  }
  return linkage.clusters();
}

std::vector<PersonIsland> islandsOf(const std::vector<PersonLink>& links, std::size_t persons,
                                    double otherwise) {
  JoinedSets sets(persons);
  std::vector<bool> isLinked(persons, false);
  for (const PersonLink& link : links) {
    if (link.score > 0.0) {
      sets.join(link.a, link.b);
      isLinked[link.a] = isLinked[link.b] = true;
    }
  }
  constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
  std::vector<std::size_t> islandOf(persons, none);  // by who stands for it
  std::vector<std::size_t> numberOf(persons, 0);     // on the island
  std::vector<std::vector<std::size_t>> people;
  for (std::size_t person = 0; person < persons; ++person) {
    if (!isLinked[person]) {
      continue;
    }
    std::size_t& island = islandOf[sets.rootOf(person)];
    if (island == none) {
      island = people.size();
      people.emplace_back();
    }
    numberOf[person] = people[island].size();
    people[island].push_back(person);
  }
  std::vector<PersonIsland> islands;
  islands.reserve(people.size());
  for (std::vector<std::size_t>& those : people) {
    const std::size_t count = those.size();
    islands.push_back({std::move(those), {count, otherwise}, {count, otherwise}});
  }
  for (const PersonLink& link : links) {
    const std::size_t root = sets.rootOf(link.a);
    if (isLinked[link.a] && isLinked[link.b] && root == sets.rootOf(link.b)) {
      PersonIsland& island = islands[islandOf[root]];
      island.scores.set(numberOf[link.a], numberOf[link.b], link.score);
      island.beliefs.set(numberOf[link.a], numberOf[link.b], link.belief);
    }
  }
  return islands;
}

double meanScore(const Cluster& cluster, const PairScores& scores) {
  double sum = 0.0;
  std::size_t pairs = 0;
  for (auto b = cluster.begin(); b != cluster.end(); ++b) {
    for (auto a = cluster.begin(); a != b; ++a) {
      sum += scores.at(*a, *b);
      ++pairs;
    }
  }
  return sum / static_cast<double>(pairs);
}

}  // namespace grouptracker
