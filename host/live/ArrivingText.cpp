#include "host/live/ArrivingText.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace grouptracker {

ArrivingText::ArrivingText(std::unique_ptr<ByteArrival> arrival)
    : m_arrival(std::move(arrival)), m_buffer(m_arrival->bytes()), m_stream(&m_buffer) {
  m_stream.exceptions(std::ios::badbit);
}

bool ArrivingText::arrivesWithin(std::chrono::milliseconds most) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + most;
  while (!m_buffer.holdsLine()) {
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    const bool isThere = m_arrival->bytes().in_avail() > 0 ||
                         m_arrival->waitFor(std::max(rest, std::chrono::milliseconds(0)));
    if (!isThere) {
      return false;
    }
    try {
      if (!m_buffer.fetch()) {
        return true;
      }
    } catch (const std::system_error&) {
      return true;  // whoever reads meets it again, and knows in which line
    }
  }
  return true;
}

bool ArrivingText::Buffer::fetch() {
  if (traits_type::eq_int_type(m_source.sgetc(), traits_type::eof())) {
    return false;
  }
  const auto count = static_cast<std::size_t>(std::max<std::streamsize>(m_source.in_avail(), 1));
  std::vector<char> bytes(gptr(), egptr());
  const std::size_t kept = bytes.size();
  bytes.resize(kept + count);
  m_source.sgetn(bytes.data() + kept, static_cast<std::streamsize>(count));
  m_bytes = std::move(bytes);
  setg(m_bytes.data(), m_bytes.data(), m_bytes.data() + m_bytes.size());
  return true;
}

ArrivingText::Buffer::int_type ArrivingText::Buffer::underflow() {
  return fetch() ? traits_type::to_int_type(*gptr()) : traits_type::eof();
}

ArrivingText::Buffer::FirstLine ArrivingText::Buffer::lookAtFirst() const {
  constexpr std::size_t longestLook = std::size_t{1} << 20U;  // bytes; enough to tell a format
  const std::string_view all(gptr(), static_cast<std::size_t>(egptr() - gptr()));
  const std::size_t begin = std::min(all.find_first_not_of("\xEF\xBB\xBF \t\r\n"), all.size());
  const std::size_t end = all.find('\n', begin);
  return {all.substr(begin, end - begin),
          end != std::string_view::npos || all.size() > longestLook};
}

bool ArrivingText::Buffer::holdsLine() const {
  return lookAtFirst().isWhole;
}

std::string ArrivingText::Buffer::firstLine() {
  while (!holdsLine() && fetch()) {
  }
  return std::string(lookAtFirst().bytes);
}

}  // namespace grouptracker
