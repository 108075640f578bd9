#include "host/report/ReportBody.h"

#include <nlohmann/json.hpp>

#include <bit>

namespace grouptracker {

static_assert(std::endian::native == std::endian::little, "the page reads little-endian numbers");

ReportBody::ReportBody() : m_list(std::make_unique<nlohmann::json>(nlohmann::json::array())) {}

ReportBody::~ReportBody() = default;

template <typename Number>
void ReportBody::append(const char* name, const char* type, const std::vector<Number>& values) {
  constexpr int alignment = 8;  // bytes, as typed arrays want it
  m_bytes.append((alignment - m_bytes.size() % alignment) % alignment, '\0');
  m_list->push_back(
      {{"name", name}, {"type", type}, {"offset", m_bytes.size()}, {"length", values.size()}});
  m_bytes.append(reinterpret_cast<const char*>(values.data()),
                 static_cast<int>(values.size() * sizeof(Number)));
}

template void ReportBody::append(const char*, const char*, const std::vector<std::uint8_t>&);
template void ReportBody::append(const char*, const char*, const std::vector<std::int16_t>&);
template void ReportBody::append(const char*, const char*, const std::vector<std::int32_t>&);
template void ReportBody::append(const char*, const char*, const std::vector<std::uint32_t>&);
template void ReportBody::append(const char*, const char*, const std::vector<double>&);

QByteArray ReportBody::packed() const {
  // The next level packs half an hour of a crowd in twice the time, the best in ten times, and
  // neither makes it a hundredth smaller.
  constexpr int level = 6;
  constexpr int lengthPrefix = 4;  // bytes that Qt puts before the deflated ones
  return qCompress(m_bytes, level).mid(lengthPrefix).toBase64();
}

}  // namespace grouptracker
