#include "host/grouping/EvidenceModel.h"

#include "host/base/JsonLine.h"

#include <algorithm>

namespace grouptracker {

namespace {

std::string numberList(const double* first, std::size_t count) {
  std::string text = "[";
  for (std::size_t i = 0; i < count; ++i) {
    text += (i > 0 ? ", " : "") + jsonNumber(first[i]);
  }
  return text + "]";
}

}  // namespace

double EvidenceModel::logOdds(const PairFeatures& features) const {
  double sum = 0.0;
  forEachTerm(features,
              [&](std::size_t index, double factor) { sum += m_weights[index] * factor; });
  return sum;
}

std::array<double, pairFeatures.size()> EvidenceModel::contributions(
    const PairFeatures& features) const {
  std::array<double, pairFeatures.size()> sums{};
  std::size_t feature = 0;
  forEachTerm(features, [&](std::size_t index, double factor) {
    if (index < flagNames.size()) {
      return;
    }
    // Weights follow each other curve by curve.
    while (feature + 1 < sums.size() && index >= m_curves[feature + 1].lines.front().first) {
      ++feature;
    }
    sums[feature] += m_weights[index] * factor;
  });
  return sums;
}

std::array<double, EvidenceModel::flagNames.size()> EvidenceModel::flagsOf(
    const PairFeatures& features) {
  return {1.0,
          features.standing,
          features.start,
          features.start * features.standing,
          features.appeared,
          features.appeared * features.standing};
}

/// In the order of `Mark`.
EvidenceModel::Factors EvidenceModel::factorsOf(const PairFeatures& features, bool needsArrivals) {
  const double seenArriving =
      needsArrivals ? (1.0 - features.start) * (1.0 - features.appeared) : 1.0;
  return {seenArriving, seenArriving * features.standing, features.start, features.appeared};
}

EvidenceModel::Position EvidenceModel::positionOf(double value, const std::vector<double>& knots) {
  if (value <= knots.front()) {
    return {0, 0.0};
  }
  if (value >= knots.back()) {
    return {knots.size() - 2, 1.0};
  }
  // Knots are few: to count those below takes less time than to halve them.
  std::size_t above = 0;
  for (const double knot : knots) {
    above += knot <= value ? 1U : 0U;
  }
  const double low = knots[above - 1];
  return {above - 1, (value - low) / (knots[above] - low)};
}

std::string EvidenceModel::text() const {
  std::string text = "{\n  \"learnedFrom\": [";
  for (const std::string& name : m_learnedFrom) {
    text += (&name == m_learnedFrom.data() ? "" : ", ") + jsonText(name);
  }
  text += "],\n  \"flags\": {";
  for (std::size_t i = 0; i < flagNames.size(); ++i) {
    text += fmt::format("{}\"{}\": {}", i > 0 ? ", " : "", flagNames[i], jsonNumber(m_weights[i]));
  }
  text += "},\n  \"features\": {";
  for (std::size_t i = 0; i < m_curves.size(); ++i) {
    const Curve& curve = m_curves[i];
    text += fmt::format("{}\n    \"{}\": {{\n      \"knots\": {}", i > 0 ? "," : "",
                        pairFeatures[i].name, numberList(curve.knots.data(), curve.knots.size()));
    for (const Line& line : curve.lines) {
      text += fmt::format(",\n      \"{}\": {}", markNames[static_cast<std::size_t>(line.mark)],
                          numberList(m_weights.data() + line.first, curve.knots.size()));
    }
    text += "\n    }";
  }
  return text + "\n  }\n}\n";
}

}  // namespace grouptracker
