#pragma once

#include <fmt/format.h>

#include <cstring>
#include <string_view>
#include <utility>

#include "NumberText.h"

/// The process's lines on standard output. What a frame prints is gathered in one buffer and handed
/// over in one piece, so that a frame costs one write however much it says. The text is formatted
/// without the locale, which Qt changes: a decimal point stays a point.
///
/// Shared by all processes of the program, as standard output is; for one thread only.
class Diagnostics {
 public:
  /// Whether lines are printed at all; when not, they are not even formatted.
  static bool enabled() { return s_enabled; }
  static void setEnabled(bool enabled) { s_enabled = enabled; }

  /// Adds formatted text, when enabled.
  template <typename... Args>
  static void print(fmt::format_string<Args...> text, Args&&... args) {
    if (s_enabled) {
      fmt::format_to(fmt::appender(s_buffer), text, std::forward<Args>(args)...);
    }
  }

  /// Adds formatted text even when diagnostics are off: what the user must know in any case.
  template <typename... Args>
  static void printAlways(fmt::format_string<Args...> text, Args&&... args) {
    fmt::format_to(fmt::appender(s_buffer), text, std::forward<Args>(args)...);
  }

  /// Adds texts, ids and measures one behind the other, when enabled; a measure has six decimals.
  /// For the lines that a frame prints thousands of.
  template <typename... Parts>
  static void write(const Parts&... parts) {
    if (!s_enabled) {
      return;
    }
    const std::size_t used = s_buffer.size();
    s_buffer.reserve(used + (room(parts) + ...));
    char* end = s_buffer.data() + used;
    ((end = put(end, parts)), ...);
    s_buffer.resize(static_cast<std::size_t>(end - s_buffer.data()));
  }

  /// Hands everything gathered so far to standard output.
  static void flush();

  /// Flushes at the end of a scope, also when an exception leaves it.
  class FlushAtExit {
   public:
    FlushAtExit() = default;
    FlushAtExit(const FlushAtExit&) = delete;
    FlushAtExit& operator=(const FlushAtExit&) = delete;
    ~FlushAtExit() { flush(); }
  };

 private:
  static std::size_t room(std::string_view text) { return text.size(); }
  static std::size_t room(int) { return NumberText::intSize; }
  static std::size_t room(double) { return NumberText::fixedSize; }
  static char* put(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
  }
  static char* put(char* out, int id) { return NumberText::writeInt(out, id); }
  static char* put(char* out, double measure) { return NumberText::writeFixed(out, measure); }

  static bool s_enabled;
  static fmt::memory_buffer s_buffer;
};
