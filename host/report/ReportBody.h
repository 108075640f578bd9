#pragma once

#include <QByteArray>
#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace grouptracker {

/// The numbers of a report as the page reads them: little-endian arrays one after the other,
/// each at a multiple of eight bytes, and a list that says where each one lies.
class ReportBody {
 public:
  ReportBody();
  ~ReportBody();
  ReportBody(const ReportBody&) = delete;
  ReportBody& operator=(const ReportBody&) = delete;

  void add(const char* name, const std::vector<std::uint8_t>& values) {
    append(name, "u8", values);
  }
  void add(const char* name, const std::vector<std::int16_t>& values) {
    append(name, "i16", values);
  }
  void add(const char* name, const std::vector<std::int32_t>& values) {
    append(name, "i32", values);
  }
  void add(const char* name, const std::vector<std::uint32_t>& values) {
    append(name, "u32", values);
  }
  void add(const char* name, const std::vector<double>& values) { append(name, "f64", values); }

  /// Name, type, offset in bytes and length of each array.
  const nlohmann::json& list() const { return *m_list; }
  /// The bytes, deflated and in base64.
  QByteArray packed() const;

 private:
  template <typename Number>
  void append(const char* name, const char* type, const std::vector<Number>& values);

  std::unique_ptr<nlohmann::json> m_list;
  QByteArray m_bytes;
};

}  // namespace grouptracker
