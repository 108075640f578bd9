#include "host/commands/Progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace grouptracker {

namespace {

constexpr auto redrawAfter = std::chrono::milliseconds(200);
const char* const eraseLine = "\r\033[K";

/// Goes on when nobody sees it.
void show(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

std::string duration(double seconds) {
  const auto whole = static_cast<std::uint64_t>(std::max(0.0, seconds));
  constexpr std::uint64_t minute = 60;
  constexpr std::uint64_t hour = 3600;
  return whole >= hour
             ? fmt::format("{}:{:02}:{:02}", whole / hour, whole % hour / minute, whole % minute)
             : fmt::format("{}:{:02}", whole / minute, whole % minute);
}

}  // namespace

bool Progress::isPossible() {
  return ::isatty(STDERR_FILENO) == 1;
}

Progress::Progress(bool enabled, std::optional<std::uint64_t> totalFrames, ProgressUnit unit)
    : m_enabled(enabled), m_totalFrames(totalFrames), m_unit(unit) {}

void Progress::update(std::uint64_t frame) {
  if (!m_enabled || Clock::now() - m_lastDrawn < redrawAfter) {
    return;
  }
  m_lastDrawn = Clock::now();
  m_isDrawn = true;
  draw(frame);
}

void Progress::clear() {
  if (m_isDrawn) {
    show(eraseLine);
    m_isDrawn = false;
  }
}

double Progress::seconds() const {
  return std::chrono::duration<double>(Clock::now() - m_start).count();
}

void Progress::draw(std::uint64_t frame) const {
  const double perSecond = static_cast<double>(frame) / std::max(seconds(), 1e-3);
  if (!m_totalFrames) {
    show(fmt::format("{}{} {}, {:.0f} {}", eraseLine, m_unit.one, frame, perSecond * m_unit.seconds,
                     m_unit.pace));
    return;
  }
  const double left = static_cast<double>(*m_totalFrames) - static_cast<double>(frame);
  show(fmt::format("{}{} {} of {}, {:.0f} {}{}", eraseLine, m_unit.one, frame, *m_totalFrames,
                   perSecond * m_unit.seconds, m_unit.pace,
                   frame == 0 ? "" : ", " + duration(left / perSecond) + " left"));
}

}  // namespace grouptracker
