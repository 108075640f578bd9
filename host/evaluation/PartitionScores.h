#pragma once

#include "host/evaluation/Grouping.h"

#include <cstdint>
#include <vector>

namespace grouptracker {

/// How much of what was found is true, how much of what is true was found, and their harmonic mean.
struct PrecisionRecall {
  double precision = 0.0;
  double recall = 0.0;
  double f1 = 0.0;

  /// Nothing to find or nothing found counts as a part of 1; `f1` is 0 when both parts are 0.
  static PrecisionRecall of(double foundAndTrue, double found, double trueAndFound, double truth);
};

/// Two ways to divide the same persons into groups.
struct PartitionPair {
  std::vector<Person> persons;  ///< all of them, ascending
  Grouping truth;               ///< members are among the persons
  Grouping found;               ///< members are among the persons
};

/// Group MITRE: every group costs as many links as it needs to hold together, every person alone
/// one link to a fake counterpart of its own, so that those alone count as well.
PrecisionRecall groupMitre(const PartitionPair& partitions);
/// The adjusted Rand index: 1 for equal partitions, 0 for what chance yields on average.
double adjustedRandIndex(const PartitionPair& partitions);

/// Numbers of groups or pairs, to be summed over frames before parts are taken of them.
struct Counts {
  std::int64_t matched = 0;
  std::int64_t found = 0;
  std::int64_t truth = 0;

  PrecisionRecall scores() const {
    const auto common = static_cast<double>(matched);
    return PrecisionRecall::of(common, static_cast<double>(found), common,
                               static_cast<double>(truth));
  }
  Counts& operator+=(const Counts& other);
};

/// The pairs of persons that are together.
Counts pairCounts(const PartitionPair& partitions);

/// The part of the larger group that both have in common.
double overlap(const PersonGroup& a, const PersonGroup& b);
/// Whether an overlap reaches a tolerance such as 2/3, for which no exact number exists.
bool reaches(double overlap, double tolerance);

/// A found and a true group correspond when their overlap reaches the tolerance. One found group
/// serves one true group; the largest overlaps are served first.
Counts correctGroups(const PartitionPair& partitions, double tolerance);

}  // namespace grouptracker
