#pragma once

#include "host/base/FileDescriptor.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace grouptracker {

/// The wish of somebody outside that files which were moved away are begun anew under their names,
/// so that logs can be rotated. There is one for the program; files see it when they are written.
namespace reopen_wish {

/// May be called by the handler of a signal.
void note();
/// How often it was wished so far.
unsigned count();

}  // namespace reopen_wish

/// What becomes of a file that somebody moves away while it is written, once it is wished that such
/// files are begun anew (`reopen_wish`).
enum class WhenMoved { begunAnew, followed };

/// A text file that holds whole lines only, whatever happens: each line goes to the operating
/// system in one piece, and a line that a full disk cuts is taken back. Opened as `openOutput()`
/// says. What cannot be written is an `OutputError`; a pipe whose reader has gone is `ClosedPipe`,
/// and one whose reader does not read, `OutputInterrupted` soon after the program is asked to stop.
class OutputFile {
 public:
  /// Each file begins with the header, which is empty or ends with a line end.
  explicit OutputFile(const std::string& path, const std::string& header = "",
                      WhenMoved whenMoved = WhenMoved::begunAnew);

  /// Writes text that ends with a line end, or another piece that shall be there as a whole.
  void writeLines(std::string_view lines);
  /// Whether something else can be put in the place of what was written: not in a pipe.
  bool canBeRewritten() const { return m_isRegular; }
  /// Puts bytes in the place of as many that were written; `at` counts from the file's start.
  void rewrite(std::int64_t at, std::string_view bytes);

 private:
  void write(std::string_view lines);
  void reopen();
  bool wasMoved() const;
  void waitForReader() const;
  [[noreturn]] void fail(int error);

  std::string m_path;
  std::string m_header;
  unsigned m_reopened;  ///< wishes that were seen
  FileDescriptor m_file;
  bool m_isRegular;        ///< nobody has to be waited for then
  bool m_canMove;          ///< a regular file with a name, which is to be begun anew when moved
  off_t m_wholeLines = 0;  ///< bytes written so far, all of whole lines
};

}  // namespace grouptracker
