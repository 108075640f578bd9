#include "ObsmatReader.h"

#include "InputFile.h"
#include "LineReader.h"
#include "TextNumbers.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

namespace {

enum Column { frameColumn = 0, personColumn = 1, xColumn = 2, yColumn = 4, columnCount = 8 };

constexpr double largestFrame = 1e15;     // whole numbers up to here are exact
constexpr double farthestPosition = 1e9;  // m

double wholeNumber(double value, double largest, const char* name) {
  if (value != std::floor(value) || value < 0.0 || value > largest) {
    throw std::invalid_argument(std::string("the ") + name + " must be a whole number from 0 to " +
                                std::to_string(static_cast<std::int64_t>(largest)));
  }
  return value;
}

void addRow(const std::vector<double>& row, std::uint64_t line, ObservationTable& table) {
  if (row.size() != columnCount) {
    throw std::invalid_argument(std::to_string(columnCount) + " numbers are expected, not " +
                                std::to_string(row.size()));
  }
  const double frame = wholeNumber(row[frameColumn], largestFrame, "frame");
  const double person =
      wholeNumber(row[personColumn], std::numeric_limits<std::uint32_t>::max(), "person");
  const cv::Point2d position(row[xColumn], row[yColumn]);
  if (std::abs(position.x) > farthestPosition || std::abs(position.y) > farthestPosition) {
    throw std::invalid_argument("the position lies too far away to be metres");
  }
  table.add(static_cast<std::int64_t>(frame),
            {static_cast<std::uint32_t>(person), position, std::nullopt}, line);
}

}  // namespace

std::unique_ptr<ObservationTable> readObsmat(std::istream& in, const std::string& name) {
  auto table = std::make_unique<ObservationTable>(name);
  LineReader lines(in, name);
  std::vector<double> row;
  while (lines.nextFilled()) {
    try {
      parseNumbers(lines.line(), row);
      addRow(row, lines.number(), *table);
    } catch (const std::invalid_argument& problem) {
      throw lines.error(problem.what());
    }
  }
  table->finish();
  return table;
}

std::unique_ptr<ObservationTable> readObsmat(const std::string& path) {
  InputFile file(path);
  return readObsmat(file.stream(), path);
}
