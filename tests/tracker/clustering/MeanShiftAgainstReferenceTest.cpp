#include "benchmarks/reference/Clustering.h"
#include "tests/tracker/clustering/Matrices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using Random = std::mt19937;

double uniform(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}
double normal(Random& random) {
  return std::normal_distribution<double>()(random);
}
std::size_t below(Random& random, std::size_t end) {
  return random() % end;
}

/// A kind of data, by its coordinates; `blob` is the number of the cluster that a point belongs to.
struct Shape {
  const char* name;
  double (*coordinate)(Random& random, std::size_t row, std::size_t blob);
};

constexpr double infinity = std::numeric_limits<double>::infinity();

const Shape shapes[] = {
    {"scattered", [](Random& random, std::size_t, std::size_t) { return uniform(random, -1, 1); }},
    {"clusters",
     [](Random& random, std::size_t row, std::size_t blob) {
       return std::sin(static_cast<double>(13 * row + 7 * blob)) + 0.02 * normal(random);
     }},
    {"grid, where many distances are equal",
     [](Random& random, std::size_t, std::size_t) {
       return static_cast<double>(below(random, 4));
     }},
    {"signed zeros and duplicates",
     [](Random& random, std::size_t, std::size_t) { return below(random, 2) == 0 ? -0.0 : 0.5; }},
    {"far from the origin, where single precision sees nothing",
     [](Random& random, std::size_t, std::size_t) { return 5e6 + uniform(random, -1, 1); }},
    {"duplicates, whose rounded mean may lie outside a small radius",
     [](Random& random, std::size_t, std::size_t) {
       return static_cast<double>(below(random, 3)) / 3.0;
     }},
    {"squares at the lower end of single precision",
     [](Random& random, std::size_t, std::size_t) { return 1e-22 * normal(random); }},
    {"squares at the upper end of single precision",
     [](Random& random, std::size_t, std::size_t) { return 1e19 * normal(random); }},
    {"squares that underflow",
     [](Random& random, std::size_t, std::size_t) { return 1e-180 * normal(random); }},
    {"squares that overflow",
     [](Random& random, std::size_t, std::size_t) { return 1e160 * normal(random); }},
    {"with values that are no numbers",
     [](Random& random, std::size_t, std::size_t) {
       const std::size_t kind = below(random, 60);
       return kind == 0   ? std::numeric_limits<double>::quiet_NaN()
              : kind == 1 ? infinity
                          : static_cast<double>(kind % 5);
     }},
};

Matrix randomPoints(Random& random, const Shape& shape, std::size_t dimension, std::size_t count) {
  Matrix data(dimension, count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t blob = below(random, 1 + count / 5);
    for (std::size_t r = 0; r < dimension; ++r) {
      data.row(r)[i] = shape.coordinate(random, r, blob);
    }
  }
  return data;
}

/// The distance of two of the points, its half, or a number next to them: where a comparison that
/// is not exact goes wrong.
double delicateBandwidth(Random& random, const Matrix& data) {
  double sum = 0.0;
  const std::size_t a = below(random, data.cols());
  const std::size_t b = below(random, data.cols());
  for (std::size_t r = 0; r < data.rows(); ++r) {
    const double difference = data.row(r)[a] - data.row(r)[b];
    sum += difference * difference;
  }
  const double distance = std::sqrt(sum) * (below(random, 2) == 0 ? 1.0 : 0.5);
  switch (below(random, 4)) {
    case 0:
      return std::nextafter(distance, infinity);
    case 1:
      return std::nextafter(distance, 0.0);
    case 2:
      return distance * uniform(random, 0.5, 1.5);
    default:
      return distance;
  }
}

TEST(MeanShiftAgainstReference, GivesTheSameBitsOnRandomData) {
  Random random(20240607);
  for (const Shape& shape : shapes) {
    for (int run = 0; run < 60; ++run) {
      const std::size_t dimension = run % 3 == 0 ? below(random, 40) : below(random, 4);
      const std::size_t count = 1 + (run % 12 == 0 ? below(random, 100) : below(random, 30));
      const Matrix data = randomPoints(random, shape, dimension, count);
      const double bandwidth = delicateBandwidth(random, data);
      const Clustering expected = Clustering(data).reference(bandwidth);
      const Clustering found = Clustering(data).meanShift(bandwidth);
      ASSERT_EQ(difference(found, expected), "")
          << shape.name << ", run " << run << ": " << count << " points of " << dimension
          << " features, bandwidth " << bandwidth;
    }
  }
}

TEST(MeanShiftAgainstReference, GivesTheSameBitsForUnusualBandwidths) {
  Random random(5);
  for (const Shape& shape : shapes) {
    for (const double bandwidth : {0.0, -0.5, 1e-170, 1e160, 1e5, 99999.0, infinity, -infinity,
                                   std::numeric_limits<double>::quiet_NaN()}) {
      const Matrix data = randomPoints(random, shape, 3, 12);
      ASSERT_EQ(
          difference(Clustering(data).meanShift(bandwidth), Clustering(data).reference(bandwidth)),
          "")
          << shape.name << ", bandwidth " << bandwidth;
    }
  }
}

}  // namespace
