#pragma once

#include "tracker/diagnostics/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

/// Text that grows at its end and keeps its room when it is cleared. Formatted without the locale,
/// which Qt changes: a decimal point stays a point.
class TextBuffer {
 public:
  /// A number as "%g" writes it.
  struct General {
    double value;
  };

  /// A short text that is added often: copied whole, a few machine words, whatever its length.
  template <std::size_t capacity>
  struct Short {
    std::array<char, capacity> text;
    unsigned int length = 0;

    /// False, and an empty text, when it is too long.
    bool set(std::string_view value) {
      length = value.size() <= capacity ? static_cast<unsigned int>(value.size()) : 0;
      std::copy_n(value.begin(), length, text.begin());
      return length == value.size();
    }
  };

  std::string_view text() const { return {m_text.data(), m_text.size()}; }
  void clear() { m_text.clear(); }

  /// Adds formatted text.
  template <typename... Args>
  void print(fmt::format_string<Args...> text, Args&&... args) {
    printArguments(text, fmt::make_format_args(args...));
  }

  /// Adds texts, ids and measures one behind the other; a measure has six decimals. For what there
  /// are thousands of.
  template <typename... Parts>
  void write(const Parts&... parts) {
    const std::size_t used = m_text.size();
    m_text.reserve(used + (room(parts) + ...));
    char* end = m_text.data() + used;
    ((end = put(end, parts)), ...);
    m_text.resize(static_cast<std::size_t>(end - m_text.data()));
  }

 private:
  // Apart from its callers, since each source that formats into a buffer by itself would compile
  // most of the library anew.
  void printArguments(fmt::string_view text, fmt::format_args arguments);

  static std::size_t room(std::string_view text) { return text.size(); }
  static std::size_t room(int) { return NumberText::intSize; }
  static std::size_t room(double) { return NumberText::fixedSize; }
  static std::size_t room(General) { return NumberText::generalSize; }
  static char* put(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
  }
  template <std::size_t capacity>
  static std::size_t room(const Short<capacity>&) {
    return capacity;
  }
  template <std::size_t capacity>
  static char* put(char* out, const Short<capacity>& text) {
    std::memcpy(out, text.text.data(), capacity);
    return out + text.length;
  }
  static char* put(char* out, int id) { return NumberText::writeInt(out, id); }
  static char* put(char* out, double measure) { return NumberText::writeFixed(out, measure); }
  static char* put(char* out, General number) {
    return NumberText::writeGeneral(out, number.value);
  }

  fmt::memory_buffer m_text;
};
