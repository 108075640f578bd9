#include "benchmarks/reference/Clustering.h"
#include "tests/tracker/clustering/Matrices.h"
#include "tracker/clustering/MeanShift.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Groups = std::vector<Values>;

Clustering clustered(const Matrix& data, double bandwidth) {
  return Clustering(data).meanShift(bandwidth);
}

TEST(MeanShift, OnePointIsItsOwnClusterAndNoneWritesNothing) {
  const Clustering one = clustered(matrixOf({{2}, {-3}}), 1.0);
  EXPECT_EQ(groupsOf(one), (Groups{{0}}));
  EXPECT_EQ(valuesOf(one.centers), (Groups{{2}, {-3}}));
  EXPECT_EQ(valuesOf(one.covariances[0]), (Groups{{0, 0}, {0, 0}}));

  int nClusters = 7;
  Matrix centers(2, 0);
  MeanShift().meanShift(Matrix(2, 0), 1.0, &nClusters, nullptr, &centers, nullptr);
  EXPECT_EQ(nClusters, 7);
}

TEST(MeanShift, PointsAtTheBandwidthAreNoNeighboursButFormOneCluster) {
  const Clustering atBandwidth = clustered(matrixOf({{0, 3}}), 3.0);
  EXPECT_EQ(groupsOf(atBandwidth), (Groups{{0, 1}}));
  EXPECT_EQ(atBandwidth.sizes[0], 2);
  EXPECT_EQ(atBandwidth.centers(0, 0), 1.5);
  // Had they climbed to their mean, each would be 1.5 from it; so the first is 0 from its centre
  // and the second 1.5 from the new and 3 from the old one.
  EXPECT_EQ(valuesOf(atBandwidth.covariances[0]), (Groups{{2.25}}));

  EXPECT_EQ(groupsOf(clustered(matrixOf({{0, 6}}), 3.0)), (Groups{{0}, {1}}));
  EXPECT_EQ(groupsOf(clustered(matrixOf({{0, 6}}), std::nextafter(3.0, 4.0))), (Groups{{0, 1}}));
}

TEST(MeanShift, AMissIsAMissHoweverSmall) {
  // 0.1 + 0.2 > 0.3 in the last bit, and 3, 4, 5 has no rounding at all.
  EXPECT_EQ(groupsOf(clustered(matrixOf({{0.0, 0.1 + 0.2}}), 0.15)), (Groups{{0}, {1}}));
  EXPECT_EQ(groupsOf(clustered(matrixOf({{0.0, 0.3}}), 0.1 + 0.05)), (Groups{{0, 1}}));
  EXPECT_EQ(groupsOf(clustered(matrixOf({{0, 3}, {0, 4}}), 2.5)), (Groups{{0}, {1}}));
}

TEST(MeanShift, PointsJoinTheFirstClusterInReachOfTheirMode) {
  //  0 . . . . 5 . . . . 10     reach 6, nobody climbs
  const Clustering ascending = clustered(matrixOf({{0, 10, 5}}), 3.0);
  EXPECT_EQ(groupsOf(ascending), (Groups{{0, 2}, {1}}));
  EXPECT_EQ(valuesOf(ascending.centers), (Groups{{2.5, 10, 0}}));

  const Clustering descending = clustered(matrixOf({{10, 0, 5}}), 3.0);
  EXPECT_EQ(groupsOf(descending), (Groups{{0, 2}, {1}}));
  EXPECT_EQ(valuesOf(descending.centers), (Groups{{7.5, 0, 0}}));

  // The centre drifts to 2.5 first, so that 8 is within its reach and 9 is not.
  EXPECT_EQ(groupsOf(clustered(matrixOf({{0, 5, 8}}), 3.0)), (Groups{{0, 1, 2}}));
  EXPECT_EQ(groupsOf(clustered(matrixOf({{0, 5, 9}}), 3.0)), (Groups{{0, 1}, {2}}));
}

TEST(MeanShift, AHugeBandwidthLeavesEveryPointWhereItIs) {
  const Matrix data = matrixOf({{0, 205000, 90000}});
  EXPECT_EQ(groupsOf(clustered(data, 100000.0)), (Groups{{0, 2}, {1}}));
  // Just below, the first point climbs to 45000, from where the second one is in reach.
  EXPECT_EQ(groupsOf(clustered(data, 99999.0)), (Groups{{0, 1, 2}}));
}

TEST(MeanShift, WithoutNeighboursTheClimbGoesToTheOrigin) {
  const Matrix data = matrixOf({{3, 3, 0}});
  for (const double bandwidth : {0.0, -1.0}) {
    const Clustering alone = clustered(data, bandwidth);
    EXPECT_EQ(groupsOf(alone), (Groups{{0}, {1}, {2}}));
    EXPECT_EQ(valuesOf(alone.centers), (Groups{{0, 0, 0}}));
  }
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Clustering lost = clustered(matrixOf({{nan, 5, 1}}), 2.0);
  EXPECT_EQ(groupsOf(lost), (Groups{{0, 2}, {1}}));
  EXPECT_EQ(valuesOf(lost.centers), (Groups{{0.5, 5, 0}}));
}

TEST(MeanShift, ContinuesWithTheClustersThatArePresent) {
  Clustering present(matrixOf({{1, 40}}));
  present.centers.SetSize(1, 4);
  present.sizes = {3, 1, 0, 0};
  present.covariances = {matrixOf({{8}}), matrixOf({{0}}), Matrix(), Matrix()};
  present.members = {matrixOf({{7, 8, 9}}), matrixOf({{6}}), Matrix(), Matrix()};
  present.centers(0, 0) = 5;
  present.centers(0, 1) = 2;
  present.nClusters = 2;
  present.meanShift(3.0);
  EXPECT_EQ(groupsOf(present), (Groups{{7, 8, 9, 0}, {6}, {1}}));
  EXPECT_EQ(valuesOf(present.centers), (Groups{{4, 2, 40, 0}}));
  EXPECT_EQ(valuesOf(present.covariances[0]), (Groups{{(3 * 8 + (1 - 4) * (1 - 5)) / 4.0}}));
}

TEST(MeanShift, CovariancesAreLeftOutOnRequestAndNothingElseChanges) {
  const Clustering full = clustered(matrixOf({{0, 3, 20}, {1, 1, 1}}), 3.0);
  Clustering lean(full.data);
  MeanShift().meanShift(lean.data, 3.0, &lean.nClusters, lean.sizes.data(), &lean.centers, nullptr);
  EXPECT_EQ(lean.nClusters, full.nClusters);
  EXPECT_EQ(lean.sizes, full.sizes);
  EXPECT_TRUE(sameBits(lean.centers, full.centers));
}

TEST(MeanShift, ArraysThatDoNotFitAreReported) {
  const auto messageWith = [](const Matrix& centers, const Matrix& covariance) {
    Clustering unfit(matrixOf({{0, 3}, {0, 0}}));
    unfit.centers = centers;
    unfit.covariances[0] = covariance;
    unfit.nClusters = centers.rows() == 2 && centers.cols() == 2 ? 1 : 0;
    return messageOf([&] { unfit.meanShift(3.0); });
  };
  Matrix fitting(2, 2);
  fitting.Null();
  const std::string outside = "matrixT::operator(): Index out of range!";
  EXPECT_EQ(messageWith(Matrix(1, 2), Matrix(2, 2)), outside);
  EXPECT_EQ(messageWith(Matrix(2, 0), Matrix(2, 2)), outside);
  EXPECT_EQ(messageWith(Matrix(3, 2), Matrix(2, 2)),
            "matrixT::operator-= : Inconsistent matrix sizes in subtraction!");
  EXPECT_EQ(messageWith(fitting, Matrix(2, 1)),
            "matrixT::operator+= : Inconsistent matrix sizes in addition!");
}

}  // namespace
