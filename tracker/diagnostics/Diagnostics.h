#pragma once

#include "tracker/diagnostics/TextBuffer.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

/// The process's lines on standard output. What a frame prints is gathered in one buffer and handed
/// over in one piece, so that a frame costs one write however much it says.
///
/// Shared by all processes of the program, as standard output is; for one thread only.
class Diagnostics {
 public:
  /// Whether lines are printed at all; when not, they are not even formatted.
  static bool enabled() { return s_enabled; }
  static void setEnabled(bool enabled) { s_enabled = enabled; }
  /// Where the lines go from now on; null for standard output. The file belongs to the caller.
  static void setOutput(std::FILE* output) { s_output = output; }

  /// Adds formatted text, when enabled.
  template <typename... Args>
  static void print(fmt::format_string<Args...> text, Args&&... args) {
    if (s_enabled) {
      s_buffer.print(text, std::forward<Args>(args)...);
    }
  }

  /// Adds formatted text even when diagnostics are off: what the user must know in any case.
  template <typename... Args>
  static void printAlways(fmt::format_string<Args...> text, Args&&... args) {
    s_buffer.print(text, std::forward<Args>(args)...);
  }

  /// Adds texts, ids and measures one behind the other, when enabled; a measure has six decimals.
  /// For the lines that a frame prints thousands of.
  template <typename... Parts>
  static void write(const Parts&... parts) {
    if (s_enabled) {
      s_buffer.write(parts...);
    }
  }

  /// Hands everything gathered so far to standard output, or where `setOutput` says.
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
  static bool s_enabled;
  static std::FILE* s_output;  ///< null for standard output
  static TextBuffer s_buffer;
};
