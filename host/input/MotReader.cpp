#include "host/input/MotReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/TextNumbers.h"
#include "host/people/ObservationSource.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <vector>

namespace grouptracker {

namespace {

enum Column {
  frameColumn,
  personColumn,
  leftColumn,
  topColumn,
  widthColumn,
  heightColumn,
  confidenceColumn,
  classColumn,            ///< of 8 or 9 columns
  xColumn = classColumn,  ///< of 10 columns
  yColumn,
  zColumn,
};
constexpr std::size_t fewestColumns = 6;
constexpr std::size_t mostColumns = 10;
constexpr double unset = -1.0;
constexpr double pedestrian = 1.0;  // among the classes of a ground truth

bool isGroundTruth(const std::vector<double>& row) {
  return row.size() == classColumn + 1 || row.size() == classColumn + 2;
}

bool counts(const std::vector<double>& row, const MotChoice& choice) {
  if (row.size() > confidenceColumn && row[confidenceColumn] < choice.minConfidence) {
    return false;
  }
  const bool isPerson =
      !isGroundTruth(row) || row[classColumn] == pedestrian || row[classColumn] == unset;
  const bool isIgnored = isGroundTruth(row) && row[confidenceColumn] == 0.0;
  return isPerson && !isIgnored;
}

cv::Rect2d boxOf(const std::vector<double>& row) {
  const cv::Rect2d box(row[leftColumn], row[topColumn], row[widthColumn], row[heightColumn]);
  expectPixels(box);
  return box;
}

std::optional<cv::Point2d> positionOf(const std::vector<double>& row) {
  const bool holdsValues =
      row.size() == mostColumns &&
      !(row[xColumn] == unset && row[yColumn] == unset && row[zColumn] == unset);
  if (!holdsValues) {
    return std::nullopt;
  }
  const cv::Point2d position(row[xColumn], row[yColumn]);
  expectMetres(position);
  return position;
}

MotRow rowOf(const std::vector<double>& row, const MotChoice& choice) {
  if (row.size() < fewestColumns || row.size() > mostColumns) {
    throw ValueProblem(std::to_string(fewestColumns) + " to " + std::to_string(mostColumns) +
                       " numbers are expected, not " + std::to_string(row.size()));
  }
  if (row[personColumn] == unset) {
    throw ValueProblem(
        "the id is -1: these are detections that nobody has tracked; run a tracker on them first");
  }
  const std::int64_t frame = wholeNumber(row[frameColumn], largestFrame, "frame");
  const std::int64_t person = wholeNumber(row[personColumn], largestPerson, "id");
  const cv::Rect2d box = boxOf(row);
  const auto position = positionOf(row);
  if (!counts(row, choice)) {
    return {frame, std::nullopt};
  }
  return {frame, Observation{static_cast<std::uint32_t>(person), position, box}};
}

}  // namespace

MotRow MotRowParser::parse(const LineReader& lines) {
  parseCommaNumbers(lines.line(), m_row);
  if (!lines.hasEnd() && m_row.size() >= fewestColumns && m_row.size() < m_columns) {
    // It would pass for a line of another kind.
    throw ValueProblem("the line is cut: " + std::to_string(m_row.size()) + " numbers, " +
                       std::to_string(m_columns) + " on the line before");
  }
  m_columns = m_row.size();
  return rowOf(m_row, m_choice);
}

std::unique_ptr<ObservationTable> readMot(std::istream& in, const std::string& name,
                                          const MotChoice& choice,
                                          const ProblemHandler& onProblem) {
  auto table = std::make_unique<ObservationTable>(name, onProblem);
  LineReader lines(in, name, longestRow);
  MotRowParser parser(choice);
  while (lines.nextFilled()) {
    try {
      const MotRow row = parser.parse(lines);
      row.seen ? table->add(row.frame, *row.seen, lines.number()) : table->cover(row.frame);
    } catch (const ValueProblem& problem) {
      onProblem(lines.error(problem.what()));
    }
  }
  return table;
}

std::unique_ptr<ObservationTable> readMot(const std::string& path, const MotChoice& choice,
                                          const ProblemHandler& onProblem) {
  InputFile file(path);
  return readMot(file.stream(), path, choice, onProblem);
}

bool isMotLine(const std::string& line) {
  std::vector<double> row;
  try {
    parseCommaNumbers(line, row);
  } catch (const ValueProblem&) {
    return false;
  }
  return row.size() >= fewestColumns && row.size() <= mostColumns;
}

bool holdsPosition(const std::string& line) {
  std::vector<double> row;
  try {
    parseCommaNumbers(line, row);
    return positionOf(row).has_value();
  } catch (const ValueProblem&) {
    return false;
  }
}

}  // namespace grouptracker
