#pragma once

#include <cstddef>

/// Numbers as text, byte for byte as printf writes them, but many times faster: a frame of a crowd
/// has a million of them.
namespace NumberText {

constexpr std::size_t intSize = 11;      ///< characters that an int takes at most
constexpr std::size_t generalSize = 16;  ///< characters that "%g" takes at most
constexpr std::size_t fixedSize = 320;   ///< characters that "%f" takes at most

/// Writes what "%d" writes; returns the end.
char* writeInt(char* out, int value);
/// Writes what "%f" writes; returns the end.
char* writeFixed(char* out, double value);
/// Writes what "%g" writes, as a stream does by default; returns the end.
char* writeGeneral(char* out, double value);

}  // namespace NumberText
