#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A text taken apart into its numbers and what stands between them, so that it can be written
/// again by other means: what a program pays that writes the same lines with them.
class FormattedText {
 public:
  explicit FormattedText(std::string_view text);

  /// Writes the text with printf to standard output, a line or a few numbers a call.
  void writeWithPrintf() const;
  /// Appends it to a file with the operators of std::ofstream.
  void writeWithStream(const std::string& fileName) const;
  /// Formats the numbers with std::to_chars into a buffer.
  void writeWithToChars() const;
  /// Formats them with the process's own `NumberText`.
  void writeWithNumberText() const;
  /// Copies the bytes.
  void copy() const;

  std::size_t size() const { return m_text.size(); }

 private:
  // What one printf call writes: the format and up to three numbers, of which some are whole.
  struct Call {
    std::string format;
    std::string kinds;  ///< "d" and "f" in the order of the numbers
    double numbers[3] = {};
  };
  struct Piece {
    std::string literal;  ///< in front of the number
    double number = 0.0;
    char kind = ' ';  ///< 'd', 'f', or ' ' for none
  };

  void gatherCalls();
  template <typename WriteInt, typename WriteFixed>
  void write(const WriteInt& writeInt, const WriteFixed& writeFixed) const;

  std::string m_text;
  std::vector<Piece> m_pieces;
  std::vector<Call> m_calls;
  mutable std::vector<char> m_buffer;
};
