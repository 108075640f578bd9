#pragma once

#include <string>
#include <string_view>
#include <sys/uio.h>
#include <vector>

/// Many texts that go to a file one behind the other, from where they are: nothing is copied. Texts
/// that are added must stay as they are until they are written.
class GatheredText {
 public:
  void clear() { m_pieces.clear(); }
  void add(std::string_view text);
  /// Appends everything to the file, which is made when there is none; false, with the reason in
  /// `errno`, when it cannot be written. A file then keeps what it had, a pipe or a device got as
  /// much as went through. A named pipe that nobody reads cannot be written.
  bool appendTo(const std::string& fileName);
  /// The same for a file that somebody has opened.
  bool appendTo(int file);

 private:
  std::vector<iovec> m_pieces;
};
