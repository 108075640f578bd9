#include "host/evaluation/learning/CalibrationCurve.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double side = 400.0;    // of the square with the curves, picture units
constexpr double margin = 60.0;   // around it
constexpr double largest = 12.0;  // radius of the point of a bin that holds everything
constexpr std::array colours{"#1f77b4", "#d62728", "#2ca02c", "#9467bd"};

double toX(double told) {
  return margin + told * side;
}

double toY(double share) {
  return margin + (1.0 - share) * side;
}

double countOf(const CalibrationCurve& curve) {
  double count = 0.0;
  for (const auto& bin : curve.bins()) {
    count += bin.count;
  }
  return std::max(count, 1e-9);
}

std::string curveOf(const NamedCurve& named, const char* colour, std::size_t place) {
  std::string line;
  std::string points;
  for (const auto& bin : named.curve.bins()) {
    if (bin.count <= 0.0) {
      continue;
    }
    const double x = toX(bin.meanTold());
    const double y = toY(bin.share());
    const double part = bin.count / countOf(named.curve);
    line += fmt::format("{:.1f},{:.1f} ", x, y);
    points += fmt::format(R"(<circle cx="{:.1f}" cy="{:.1f}" r="{:.1f}" fill="{}"/>)"
                          "\n",
                          x, y, 2.0 + largest * std::sqrt(part), colour);
  }
  const double legend = margin + 20.0 * static_cast<double>(place + 1);
  return fmt::format(R"(<polyline points="{0}" fill="none" stroke="{1}" stroke-width="2"/>
{2}<text x="{3}" y="{4}" fill="{1}">{5}, error {6:.3f}</text>
)",
                     line, colour, points, margin + 12.0, legend, named.name, named.curve.error());
}

std::string axes() {
  std::string marks;
  for (int tenths = 0; tenths <= 10; tenths += 2) {
    const double value = tenths / 10.0;
    marks +=
        fmt::format(R"(<text x="{:.0f}" y="{:.0f}" text-anchor="middle">{:.1f}</text>
<text x="{:.0f}" y="{:.0f}" text-anchor="end">{:.1f}</text>
)",
                    toX(value), toY(0.0) + 20.0, value, toX(0.0) - 8.0, toY(value) + 4.0, value);
  }
  return fmt::format(
      R"svg(<rect x="{0}" y="{0}" width="{1}" height="{1}" fill="none" stroke="#888"/>
<line x1="{0}" y1="{2}" x2="{2}" y2="{0}" stroke="#888" stroke-dasharray="4"/>
{3}<text x="{4}" y="{5}" text-anchor="middle">probability that is told</text>
<text transform="translate(18 {4}) rotate(-90)" text-anchor="middle">share that is true</text>
)svg",
      margin, side, margin + side, marks, margin + side / 2, margin + side + 45.0);
}

}  // namespace

void CalibrationCurve::add(double probability, double correct, double count) {
  const auto last = static_cast<double>(m_bins.size() - 1);
  const double place = std::clamp(std::floor(probability * (last + 1.0)), 0.0, last);
  Bin& bin = m_bins[static_cast<std::size_t>(place)];
  bin.count += count;
  bin.told += probability * count;
  bin.correct += correct * count;
}

double CalibrationCurve::error() const {
  double sum = 0.0;
  for (const Bin& bin : m_bins) {
    sum += std::abs(bin.told - bin.correct);
  }
  return sum / countOf(*this);
}

std::string tableOf(const std::vector<NamedCurve>& curves) {
  std::string table = fmt::format("{:<16}", "probability");
  for (const NamedCurve& named : curves) {
    table += fmt::format(" {:>28}", named.name);
  }
  table += "\n";
  for (std::size_t i = 0; i < CalibrationCurve().bins().size(); ++i) {
    table += fmt::format("{:.1f} to {:.1f}{:6}", static_cast<double>(i) / 10.0,
                         static_cast<double>(i + 1) / 10.0, "");
    for (const NamedCurve& named : curves) {
      const auto& bin = named.curve.bins()[i];
      table += fmt::format(" {:7.1f}% told {:.2f} true {:.2f}",
                           100.0 * bin.count / countOf(named.curve), bin.meanTold(), bin.share());
    }
    table += "\n";
  }
  table += fmt::format("{:<16}", "mean error");
  for (const NamedCurve& named : curves) {
    table += fmt::format(" {:>28.3f}", named.curve.error());
  }
  return table + "\n";
}

std::string pictureOf(const std::vector<NamedCurve>& curves) {
  std::string body = axes();
  for (std::size_t i = 0; i < curves.size(); ++i) {
    body += curveOf(curves[i], colours[i % colours.size()], i);
  }
  return fmt::format(
      R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {0} {0}" font-family="sans-serif" font-size="13">
<rect width="100%" height="100%" fill="white"/>
{1}</svg>
)",
      side + 2 * margin, body);
}

}  // namespace grouptracker
