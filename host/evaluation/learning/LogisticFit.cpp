#include "host/evaluation/learning/LogisticFit.h"

#include "host/base/Interruption.h"
#include "host/grouping/TogetherChain.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double examplesOfAPart = 1000.0;
constexpr double ridgeOfIntercept = 1e-3;
constexpr int mostSteps = 60;
constexpr double smallestStep = 1e-9;  // of a weight; below, the fit is done
constexpr double leastShare = 1e-4;    // of a step that is halved and halved again

using Weights = cv::Mat1d;  // a column

/// The examples of all parts, each with how much it counts.
struct CountedExample {
  std::span<const PairExamples::Term> terms;
  bool isTogether = false;
  double counts = 0.0;
};

std::vector<CountedExample> countedIn(const std::vector<ExamplePart>& parts) {
  std::vector<CountedExample> counted;
  for (const ExamplePart& part : parts) {
    const std::size_t first = counted.size();
    for (const PairExample& example : part.examples->examples()) {
      if (example.time < part.until) {
        counted.push_back({part.examples->termsOf(example), example.isTogether, 0.0});
      }
    }
    for (std::size_t i = first; i < counted.size(); ++i) {
      counted[i].counts = examplesOfAPart / static_cast<double>(counted.size() - first);
    }
  }
  return counted;
}

double logOddsOf(const CountedExample& example, const Weights& weights) {
  double sum = 0.0;
  for (const auto& [weight, factor] : example.terms) {
    sum += weights(static_cast<int>(weight)) * factor;
  }
  return sum;
}

/// What is minimised, and how to go on from some weights.
class Objective {
 public:
  Objective(const std::vector<ExamplePart>& parts, std::size_t weights, double ridge)
      : m_examples(countedIn(parts)), m_ridge(static_cast<int>(weights), 1, ridge) {
    m_ridge(0) = ridgeOfIntercept;
  }

  double at(const Weights& weights) const {
    LongWork::step();
    double sum = 0.0;
    for (const CountedExample& example : m_examples) {
      const double odds = logOddsOf(example, weights);
      // log(1 + exp(odds)) without overflow
      const double softPlus = std::max(odds, 0.0) + std::log1p(std::exp(-std::abs(odds)));
      sum += example.counts * (softPlus - (example.isTogether ? odds : 0.0));
    }
    return sum + m_ridge.mul(weights).dot(weights) / 2;
  }

  Weights newtonStep(const Weights& weights) const {
    LongWork::step();
    Weights gradient = m_ridge.mul(weights);
    cv::Mat1d hessian = cv::Mat::diag(m_ridge);
    for (const CountedExample& example : m_examples) {
      const double probability = probabilityOf(logOddsOf(example, weights));
      const double slope = example.counts * (probability - (example.isTogether ? 1.0 : 0.0));
      const double bend = example.counts * probability * (1.0 - probability);
      for (const auto& a : example.terms) {
        gradient(static_cast<int>(a.weight)) += slope * a.factor;
        double* const row = hessian[static_cast<int>(a.weight)];
        const double bendOfA = bend * a.factor;
        for (const auto& b : example.terms) {
          row[b.weight] += bendOfA * b.factor;
        }
      }
    }
    Weights step;
    cv::solve(hessian, gradient, step, cv::DECOMP_CHOLESKY);
    return step;
  }

 private:
  std::vector<CountedExample> m_examples;
  Weights m_ridge;
};

}  // namespace

std::vector<double> fitLogistic(const std::vector<ExamplePart>& parts, std::size_t weights,
                                double ridge) {
  const Objective objective(parts, weights, ridge);
  Weights now(static_cast<int>(weights), 1, 0.0);
  double value = objective.at(now);
  for (int i = 0; i < mostSteps; ++i) {
    const Weights step = objective.newtonStep(now);
    double share = 1.0;
    double next = objective.at(now - step);
    while (next > value && share > leastShare) {
      share /= 2;
      next = objective.at(now - share * step);
    }
    if (next > value) {
      break;  // as near as rounding allows
    }
    now = now - share * step;
    value = next;
    if (cv::norm(step, cv::NORM_INF) < smallestStep) {
      break;
    }
  }
  return {now.begin(), now.end()};
}

}  // namespace grouptracker
