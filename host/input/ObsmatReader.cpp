#include "host/input/ObsmatReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/TextNumbers.h"
#include "host/people/ObservationSource.h"

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace grouptracker {

namespace {

enum Column { frameColumn = 0, personColumn = 1, xColumn = 2, yColumn = 4, columnCount = 8 };

void addRow(const std::vector<double>& row, std::uint64_t line, ObservationTable& table) {
  if (row.size() != columnCount) {
    throw ValueProblem(std::to_string(columnCount) + " numbers are expected, not " +
                       std::to_string(row.size()));
  }
  const std::int64_t frame = wholeNumber(row[frameColumn], largestFrame, "frame");
  const std::int64_t person = wholeNumber(row[personColumn], largestPerson, "person");
  const cv::Point2d position(row[xColumn], row[yColumn]);
  if (std::abs(position.x) > farthestPosition || std::abs(position.y) > farthestPosition) {
    throw ValueProblem("the position lies too far away to be metres");
  }
  table.add(frame, {static_cast<std::uint32_t>(person), position, std::nullopt}, line);
}

}  // namespace

std::unique_ptr<ObservationTable> readObsmat(std::istream& in, const std::string& name,
                                             const ProblemHandler& onProblem) {
  auto table = std::make_unique<ObservationTable>(name, onProblem);
  LineReader lines(in, name, longestRow);
  std::vector<double> row;
  while (lines.nextFilled()) {
    try {
      parseNumbers(lines.line(), row);
      addRow(row, lines.number(), *table);
    } catch (const ValueProblem& problem) {
      onProblem(lines.error(problem.what()));
    }
  }
  table->finish();
  return table;
}

std::unique_ptr<ObservationTable> readObsmat(const std::string& path,
                                             const ProblemHandler& onProblem) {
  InputFile file(path);
  return readObsmat(file.stream(), path, onProblem);
}

}  // namespace grouptracker
