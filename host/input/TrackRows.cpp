#include "host/input/TrackRows.h"

#include "host/base/InputError.h"
#include "host/base/TextNumbers.h"

#include <fmt/format.h>

#include <cmath>

namespace grouptracker {

namespace {

constexpr double highestRate = 10000.0;  // frames a second
constexpr double latestTime = 1e10;      // s; the clocks of computers are at 2e9

double valueOf(const TrackRows::Row& row, TrackQuantity quantity) {
  return row[static_cast<std::size_t>(quantity)];
}

std::int64_t ticksOf(double time) {
  if (time < 0.0 || time > latestTime) {
    throw ValueProblem(fmt::format("the time must be from 0 to {} seconds{}", latestTime,
                                   time > 0.0 ? ", not in smaller units" : ""));
  }
  return std::llround(time * ObservationTable::ticksPerSecond);
}

}  // namespace

void TrackRows::setColumns(const TrackColumns& columns) {
  m_columns = columns;
  if (!columns.at(TrackQuantity::frame)) {
    m_people->takeTimes();
  }
}

void TrackRows::setRate(double rate) {
  if (!(rate > 0.0) || rate > highestRate) {
    throw ValueProblem(fmt::format("the frame rate must be above 0 and at most {}", highestRate));
  }
  m_rate = rate;
}

void TrackRows::add(const Row& row, std::uint64_t line) {
  const bool hasFrames = m_columns.at(TrackQuantity::frame).has_value();
  const std::int64_t frame =
      hasFrames ? wholeNumber(valueOf(row, TrackQuantity::frame), largestFrame, "frame")
                : ticksOf(valueOf(row, TrackQuantity::time));
  const std::int64_t person = wholeNumber(valueOf(row, TrackQuantity::person), largestPerson, "id");
  const cv::Point2d place(valueOf(row, TrackQuantity::x) * m_columns.unit,
                          valueOf(row, TrackQuantity::y) * m_columns.unit);
  expectMetres(place);
  if (hasFrames && m_columns.at(TrackQuantity::time)) {
    noteMoment(row);
  }
  m_people->add(frame, {static_cast<std::uint32_t>(person), place, std::nullopt}, line);
}

void TrackRows::noteMoment(const Row& row) {
  const Moment moment{valueOf(row, TrackQuantity::frame), valueOf(row, TrackQuantity::time)};
  m_first = m_first && m_first->frame <= moment.frame ? m_first : moment;
  m_last = m_last && m_last->frame >= moment.frame ? m_last : moment;
}

std::optional<double> TrackRows::rateOfMoments() const {
  if (!m_first || !(m_last->time > m_first->time)) {
    return std::nullopt;
  }
  const double rate = (m_last->frame - m_first->frame) / (m_last->time - m_first->time);
  return rate > 0.0 && rate <= highestRate ? std::optional(rate) : std::nullopt;
}

TrackRecording TrackRows::finish() {
  m_people->finish();
  const auto ownRate = m_people->rate();
  return {std::move(m_people), ownRate ? ownRate : (m_rate ? m_rate : rateOfMoments()), {}};
}

}  // namespace grouptracker
