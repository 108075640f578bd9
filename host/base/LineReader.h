#pragma once

#include "host/base/InputError.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>

namespace grouptracker {

/// Reads a text line by line, knows where it is, and never holds more than one line. Line ends may
/// be those of Unix or Windows; a byte-order mark at the start is dropped; the last line needs no
/// end. A line above `maxLineLength` and a failing read are an `InputError`.
class LineReader {
 public:
  static constexpr std::size_t maxLineLength = std::size_t{16} * 1024 * 1024;  // bytes

  /// `name` is the file's name in messages. The stream must outlive the reader.
  LineReader(std::istream& in, std::string name, std::size_t longest = maxLineLength);

  /// Goes to the next line; false at the end of the text.
  bool next();
  /// Goes to the next line that holds more than blanks.
  bool nextFilled();
  /// The current line without its end.
  const std::string& line() const { return m_line; }
  /// Whether the current line has an end; only the last may have none, as one that was cut.
  bool hasEnd() const { return m_hasEnd; }
  /// The current line's number, from 1; 0 before the first.
  std::uint64_t number() const { return m_number; }
  /// Where the current line stands.
  InputPlace place() const { return {m_name, m_number}; }
  /// The error for a problem in the current line.
  InputError error(const std::string& problem) const { return {m_name, m_number, problem}; }

 private:
  bool readChunks();
  void dropMarks();

  std::istream& m_in;
  std::string m_name;
  std::size_t m_longest;  ///< bytes
  std::string m_line;
  bool m_hasEnd = true;
  std::uint64_t m_number = 0;
};

}  // namespace grouptracker
