#include "python/bindings/TableRun.h"

#include "host/base/InputError.h"
#include "host/base/Interruption.h"
#include "host/base/TextNumbers.h"
#include "host/evaluation/Baselines.h"
#include "host/input/OpenedInput.h"
#include "host/input/TrackRows.h"
#include "host/run/EventDetector.h"
#include "host/run/GroupRun.h"
#include "host/run/RunParameters.h"
#include "library/OwnNames.h"
#include "library/TrackerValues.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <utility>

namespace grouptracker {

namespace {

const char* const tableName = "table";

using RowNumbers = std::vector<std::size_t>;  ///< from 0 on

/// A table on its way to frames.
class TableInput {
 public:
  TableInput(const TrackTable& table, const std::optional<double>& rate,
             const TrackerSettings& settings)
      : m_table(table) {
    InputOptions options;
    takeCamera(settings, options);
    m_input.files = {tableName};
    TrackRecording recording = table.boxes.empty() ? rowsOfPlaces() : rowsOfBoxes();
    recording.people->visit([this](const ObservationRow& row) { note(row); });
    openRecording(std::move(recording), options, m_input);
    giveTimes(rate, m_input);
  }

  bool next(InputFrame& frame) { return m_input.frames->next(frame); }
  FrameSource& frames() { return *m_input.frames; }
  /// The rows of each moment at which somebody is seen, in order.
  const std::vector<RowNumbers>& moments() const { return m_moments; }

 private:
  TrackRecording rowsOfPlaces();
  TrackRecording rowsOfBoxes();
  void addBox(ObservationTable& people, std::size_t row) const;
  void note(const ObservationRow& row);

  const TrackTable& m_table;
  OpenedInput m_input;
  std::optional<std::int64_t> m_lastMoment;
  std::vector<RowNumbers> m_moments;
};

/// Runs an action for each row; what is wrong with it is told with its number.
template <typename Action>
void forEachRow(std::size_t rows, const Action& action) {
  for (std::size_t row = 0; row < rows; ++row) {
    LongWork::step();
    try {
      action(row);
    } catch (const ValueProblem& problem) {
      throw InputError(tableName, row + 1, problem.what());
    }
  }
}

double at(const std::vector<double>& column, std::size_t row) {
  return column.empty() ? 0.0 : column[row];
}

void requireNumbers(const TrackRows::Row& row) {
  for (const double number : row) {
    if (!std::isfinite(number)) {
      throw ValueProblem("a number is missing or not finite");
    }
  }
}

TrackRecording TableInput::rowsOfPlaces() {
  TrackColumns columns;
  const auto place = [&columns](TrackQuantity quantity, bool isThere) {
    if (isThere) {
      columns.places[static_cast<std::size_t>(quantity)] = 0;
    }
  };
  place(TrackQuantity::frame, !m_table.frames.empty());
  place(TrackQuantity::time, !m_table.times.empty());
  TrackRows rows(tableName, throwProblem);
  rows.setColumns(columns);
  forEachRow(m_table.ids.size(), [&](std::size_t i) {
    const TrackRows::Row row{at(m_table.frames, i), at(m_table.times, i), m_table.ids[i],
                             m_table.positions[i][0], m_table.positions[i][1]};
    requireNumbers(row);
    rows.add(row, i + 1);
  });
  return rows.finish();
}

TrackRecording TableInput::rowsOfBoxes() {
  auto people = std::make_unique<ObservationTable>(tableName);
  if (m_table.frames.empty()) {
    throw InputError(tableName, "boxes need frame numbers");
  }
  forEachRow(m_table.ids.size(), [&](std::size_t row) { addBox(*people, row); });
  people->finish();
  return {std::move(people), std::nullopt, {}};
}

void TableInput::addBox(ObservationTable& people, std::size_t row) const {
  const auto& box = m_table.boxes[row];
  const std::int64_t frame = wholeNumber(m_table.frames[row], largestFrame, "frame");
  const std::int64_t person = wholeNumber(m_table.ids[row], largestPerson, "id");
  Observation observation{static_cast<std::uint32_t>(person), {}, {}};
  for (const double number : box) {
    if (!(std::abs(number) <= farthestBox)) {
      throw ValueProblem("the box is none in pixels");
    }
  }
  if (box[2] < 0.0 || box[3] < 0.0) {
    throw ValueProblem("the box has a width or height below 0");
  }
  observation.box2D = cv::Rect2d(box[0], box[1], box[2], box[3]);
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr std::array<double, 2> unknown{nan, nan};
  const auto [x, y] = m_table.positions.empty() ? unknown : m_table.positions[row];
  if (!std::isnan(x) || !std::isnan(y)) {
    if (!(std::abs(x) <= farthestPosition && std::abs(y) <= farthestPosition)) {
      throw ValueProblem("the position is none in metres");
    }
    observation.position = cv::Point2d(x, y);
  }
  people.add(frame, observation, row + 1);
}

void TableInput::note(const ObservationRow& row) {
  if (m_lastMoment != row.frame) {
    m_moments.emplace_back();
    m_lastMoment = row.frame;
  }
  m_moments.back().push_back(row.line - 1);
}

RunParameters parametersOf(const TrackerSettings& settings, const std::vector<InputFrame>& first) {
  RunParameters parameters(settings.parameterFile, settings.parameterChanges);
  if (first.size() == 2 && first[0].time && first[1].time) {
    parameters.suit(1.0 / (*first[1].time - *first[0].time));
  }
  return parameters;
}

/// The groups of the rows at one step.
void nameGroups(const TrackerStep& step, const RowNumbers& rows, const TrackTable& table,
                std::vector<std::uint32_t>& groupOfRows) {
  std::map<std::uint32_t, std::uint32_t> groupOf;
  for (const TrackerGroup& group : step.groups) {
    for (const std::uint32_t member : group.members) {
      groupOf[member] = group.id;
    }
  }
  for (const std::size_t row : rows) {
    const auto found = groupOf.find(static_cast<std::uint32_t>(table.ids[row]));
    groupOfRows[row] = found == groupOf.end() ? 0 : found->second;
  }
}

}  // namespace

TableGroups findGroups(TrackTable table, const std::optional<double>& rate,
                       const TrackerSettings& settings) {
  OwnNames names;
  for (double& id : table.ids) {
    id = names.ownOf(id);
  }
  TableInput input = [&] {
    const PersonNames::Stead own(names.table());  // in messages
    return TableInput(table, rate, settings);
  }();
  std::vector<InputFrame> first;
  for (InputFrame frame; first.size() < 2 && input.next(frame);) {
    first.push_back(std::move(frame));
  }
  GroupRun run(groupOptions(settings, parametersOf(settings, first)));
  EventDetector events;
  TableGroups result;
  result.groupOfRows.resize(table.ids.size());
  std::vector<bool> hasPeople;  // by frame
  const auto take = [&](const InputFrame& frame) {
    hasPeople.push_back(!frame.actors.isEmpty());
    return run.advance(frame);
  };
  auto nextMoment = input.moments().begin();
  const auto note = [&](RunSteps steps) {
    for (RunStep& step : steps) {
      step.events = events.next(step);
      result.steps.push_back(toTrackerStep(step));
      if (hasPeople[result.steps.size() - 1]) {
        nameGroups(result.steps.back(), *nextMoment++, table, result.groupOfRows);
      }
      names.giveBack(result.steps.back());
    }
  };
  for (const InputFrame& frame : first) {
    note(take(frame));
  }
  for (InputFrame frame; input.next(frame);) {
    LongWork::step();
    note(take(frame));
  }
  note(run.finish());
  return result;
}

std::vector<PeopleFrame> peopleOf(const TrackTable& table, const std::optional<double>& rate,
                                  const TrackerSettings& settings) {
  TableInput input(table, rate, settings);
  return peopleIn(input.frames());
}

}  // namespace grouptracker
