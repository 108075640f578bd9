#include "host/input/FrameRange.h"

#include <fmt/format.h>

#include <charconv>
#include <string_view>
#include <system_error>

namespace grouptracker {

namespace {

/// Reads a number that fills the text; an empty text leaves the number as it is.
bool readEnd(std::string_view text, std::int64_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return text.empty() || (error == std::errc() && end == text.data() + text.size());
}

}  // namespace

std::optional<FrameRange> FrameRange::parse(const std::string& text) {
  const auto colon = text.find(':');
  if (colon == std::string::npos) {
    return std::nullopt;
  }
  FrameRange range;
  const std::string_view view = text;
  const bool isRange = readEnd(view.substr(0, colon), range.first) &&
                       readEnd(view.substr(colon + 1), range.last) && range.first <= range.last;
  return isRange ? std::optional(range) : std::nullopt;
}

bool FramesWithin::next(InputFrame& frame) {
  while (m_source->next(frame)) {
    m_seen = frame.number;
    if (frame.number > m_range.last) {
      break;
    }
    if (m_range.contains(frame.number)) {
      m_hasAny = true;
      return true;
    }
  }
  warnOfNone();
  return false;
}

void FramesWithin::warnOfNone() const {
  if (!m_hasAny && m_seen) {
    m_warn(fmt::format("no frame lies within --frames; the {} is {}",
                       *m_seen > m_range.last ? "first behind them" : "last", *m_seen));
  }
}

}  // namespace grouptracker
