#include "host/explain/PairWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <vector>

namespace grouptracker {

namespace {

using Value = double PairFeatures::*;

constexpr double noteworthy = 0.15;  // log-odds
constexpr double clear = 0.5;        // log-odds
constexpr double strong = 1.2;       // log-odds
constexpr double mostly = 0.5;       // of a mark from 0 to 1

/// Features that people would name in one breath.
struct Aspect {
  std::vector<Value> values;
  /// What was seen.
  std::function<std::string(const PairFeatures&)> seen;
  /// What would have to be seen instead.
  std::function<std::string(const PairFeatures&)> wanted;
  /// Whether more of it makes strangers of people.
  bool isDistance = true;
};

std::string arrivals(const PairFeatures& f) {
  if (f.start >= mostly) {
    return fmt::format(
        "when both were first seen {:.1f} m lay between them; one was there already "
        "as the recording began",
        f.firstDistance);
  }
  if (f.appeared >= mostly) {
    return fmt::format(
        "when both were first seen {:.1f} m lay between them; one stood there all at "
        "once, nobody saw it come",
        f.firstDistance);
  }
  return fmt::format("they came into view {:.1f} s one after the other, {:.1f} m apart",
                     f.arrivalGap, f.firstDistance);
}

std::string paceOf(const PairFeatures& f) {
  if (f.standing >= mostly) {
    return fmt::format("both stand {:.0f} % of the time", 100.0 * f.standing);
  }
  return fmt::format("they move at {:.1f} m/s", f.speed);
}

const std::vector<Aspect>& aspects() {
  using F = PairFeatures;
  static const std::vector<Aspect> all{
      {{&F::meanDistance, &F::largestDistance, &F::recentDistance, &F::along, &F::across},
       [](const F& f) {
         return fmt::format("{:.1f} m lie between them on average, {:.1f} m at most",
                            f.meanDistance, f.largestDistance);
       },
       [](const F& f) { return fmt::format("{:.1f} m between them on average", f.meanDistance); }},
      {{&F::shift, &F::recentShift},
       [](const F& f) {
         return fmt::format(
             "seen from one, the other ends {:.1f} m from where it began, {:.1f} m "
             "in the last moments",
             f.shift, f.recentShift);
       },
       [](const F& f) { return fmt::format("a shift of {:.1f} m between them", f.shift); }},
      {{&F::velocityDifference, &F::recentVelocityDifference, &F::speedDifference},
       [](const F& f) {
         return fmt::format("ways and speeds differ by {:.2f} m/s, {:.2f} m/s in the last moments",
                            f.velocityDifference, f.recentVelocityDifference);
       },
       [](const F& f) {
         return fmt::format("ways and speeds that differ by {:.2f} m/s", f.velocityDifference);
       }},
      {{&F::firstDistance, &F::arrivalGap},
       arrivals,
       [](const F& f) {
         return fmt::format("an arrival {:.1f} s one after the other, {:.1f} m apart", f.arrivalGap,
                            f.firstDistance);
       }},
      {{&F::closeShare, &F::nearShare, &F::wayTogether, &F::timeTogether},
       [](const F& f) {
         return fmt::format(
             "in view together for {:.0f} s so far, {:.0f} % of it within 1.2 m, "
             "{:.0f} % within 2 m; {:.1f} m walked side by side",
             f.timeTogether, 100.0 * f.closeShare, 100.0 * f.nearShare, f.wayTogether);
       },
       [](const F& f) {
         return fmt::format(
             "{:.0f} % of {:.0f} s together within 1.2 m and {:.1f} m walked side by "
             "side",
             100.0 * f.closeShare, f.timeTogether, f.wayTogether);
       },
       false},
      {{&F::nearerOthers, &F::crowd},
       [](const F& f) {
         return fmt::format("{:.1f} others are nearer to one of them, {:.1f} are within 3 m",
                            f.nearerOthers, f.crowd);
       },
       [](const F& f) {
         return fmt::format("{:.1f} others nearer to one of them", f.nearerOthers);
       }},
      {{&F::speed}, paceOf, {}},
  };
  return all;
}

const char* strengthOf(double contribution) {
  const double size = std::abs(contribution);
  return size >= strong ? "strongly" : size >= clear ? "clearly" : "a little";
}

double sumOf(const Aspect& aspect, const PairFeatures& features, const EvidenceModel& model) {
  const auto contributions = model.contributions(features);
  double sum = 0.0;
  for (std::size_t i = 0; i < pairFeatures.size(); ++i) {
    const bool isOfIt = std::find(aspect.values.begin(), aspect.values.end(),
                                  pairFeatures[i].value) != aspect.values.end();
    sum += isOfIt ? contributions[i] : 0.0;
  }
  return sum;
}

/// The features with an aspect changed by a part: nearer and more alike, or the other way round.
PairFeatures changed(PairFeatures features, const Aspect& aspect, double part) {
  for (const Value value : aspect.values) {
    if (value == &PairFeatures::timeTogether) {
      continue;  // nobody can have come earlier
    }
    double& number = features.*value;
    number *= part;
    if (value == &PairFeatures::closeShare || value == &PairFeatures::nearShare) {
      number = std::min(number, 1.0);
    }
  }
  return features;
}

/// The least change of an aspect that turns the evidence; none when no change does.
std::optional<PairFeatures> turnedBy(const Aspect& aspect, const PairFeatures& features,
                                     const EvidenceModel& model) {
  constexpr std::array less{0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3, 0.2, 0.1, 0.0};
  constexpr std::array more{1.1, 1.25, 1.5, 1.75, 2.0, 2.5, 3.0, 4.0, 6.0, 10.0};
  const bool areTogether = model.logOdds(features) > 0.0;
  const auto& parts = areTogether == aspect.isDistance ? more : less;
  for (const double part : parts) {
    const PairFeatures other = changed(features, aspect, part);
    if ((model.logOdds(other) > 0.0) != areTogether) {
      return other;
    }
  }
  return std::nullopt;
}

}  // namespace

std::string reasonsFor(const PairFeatures& features, const EvidenceModel& model) {
  struct Reason {
    std::string text;
    double contribution = 0.0;
  };
  std::vector<Reason> reasons;
  double rest = model.logOdds(features);
  for (const Aspect& aspect : aspects()) {
    const double contribution = sumOf(aspect, features, model);
    rest -= contribution;
    reasons.push_back({aspect.seen(features), contribution});
  }
  reasons.push_back({"most who come near each other are strangers", rest});
  std::stable_sort(reasons.begin(), reasons.end(), [](const Reason& a, const Reason& b) {
    return std::abs(a.contribution) > std::abs(b.contribution);
  });
  std::string text;
  for (const auto& [seen, contribution] : reasons) {
    if (std::abs(contribution) >= noteworthy) {
      text += fmt::format("  {:<7} {:<8} {:+5.2f}  {}\n", contribution > 0.0 ? "for" : "against",
                          strengthOf(contribution), contribution, seen);
    }
  }
  return text;
}

std::string whatWouldTurn(const PairFeatures& features, const EvidenceModel& model) {
  const char* const opposite = model.logOdds(features) > 0.0 ? "against" : "for";
  std::string text;
  for (const Aspect& aspect : aspects()) {
    if (!aspect.wanted) {
      continue;
    }
    const bool arrivalsSaySomething = aspect.values.back() != &PairFeatures::arrivalGap ||
                                      features.start + features.appeared < 0.5;
    if (const auto other = turnedBy(aspect, features, model); other && arrivalsSaySomething) {
      text += fmt::format("  would speak {} them: {}, not {}\n", opposite, aspect.wanted(*other),
                          aspect.wanted(features));
    }
  }
  return text.empty() ? fmt::format(
                            "  no single thing would turn it: several would have to speak "
                            "{} them\n",
                            opposite)
                      : text;
}

}  // namespace grouptracker
