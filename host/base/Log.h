#pragma once

#include <cstdint>
#include <string>

namespace grouptracker {

/// What the program says of itself on standard error, a line each: plain, or for those who collect
/// lines as one JSON object:
///
///     {"time": "2026-11-22T08:12:13.123Z", "level": "warning", "message": "..."}
///
/// There is one log for the program; any thread may write to it.
namespace program_log {

enum class Format : std::uint8_t { text, json };
enum class Level : std::uint8_t { info, warning, error };

/// To be said before there are threads.
void setFormat(Format format);
void write(Level level, const std::string& text);

}  // namespace program_log

}  // namespace grouptracker
