#include "host/grouping/Partition.h"

#include <algorithm>
#include <iterator>
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

/// Persons whom a chain of scores above 0 connects, each ascending. Those of two islands have no
/// such score among them, and so no mean above 0 either: they are never in one cluster.
std::vector<Cluster> islandsOf(const PairScores& scores) {
  std::vector<Cluster> islands;
  std::vector<bool> isTaken(scores.persons(), false);
  for (std::size_t first = 0; first < scores.persons(); ++first) {
    if (isTaken[first]) {
      continue;
    }
    Cluster island{first};
    isTaken[first] = true;
    for (std::size_t next = 0; next < island.size(); ++next) {
      for (std::size_t other = first + 1; other < scores.persons(); ++other) {
        if (!isTaken[other] && scores.at(island[next], other) > 0.0) {
          isTaken[other] = true;
          island.push_back(other);
        }
      }
    }
    std::sort(island.begin(), island.end());
    islands.push_back(std::move(island));
  }
  return islands;
}

std::vector<Cluster> linkWithin(const Cluster& island, const PairScores& scores) {
  PairScores own(island.size(), 0.0);
  for (std::size_t b = 0; b < island.size(); ++b) {
    for (std::size_t a = 0; a < b; ++a) {
      own.set(a, b, scores.at(island[a], island[b]));
    }
  }
  Linkage linkage(std::move(own));
  while (linkage.joinBest()) {
  }
  std::vector<Cluster> clusters = linkage.clusters();
  for (Cluster& cluster : clusters) {
    for (std::size_t& person : cluster) {
      person = island[person];
    }
  }
  return clusters;
}

}  // namespace

void PairScores::set(std::size_t a, std::size_t b, double score) {
  m_scores[a * m_persons + b] = score;
  m_scores[b * m_persons + a] = score;
}

std::vector<Cluster> linkByAverage(const PairScores& scores) {
  std::vector<Cluster> clusters;
  for (const Cluster& island : islandsOf(scores)) {
    for (const Cluster& cluster : linkWithin(island, scores)) {
      clusters.push_back(cluster);
    }
  }
  std::sort(clusters.begin(), clusters.end());
  return clusters;
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
