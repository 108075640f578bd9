#include "tracker/diagnostics/GatheredText.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t piecesAtOnce = 1024;  // that the system takes in one call

// Writes all pieces, each of which is shortened by what is written of it; false when it cannot.
bool writeAll(int file, iovec* piece, const iovec* end) {
  while (piece != end) {
    const auto count = std::min(static_cast<std::size_t>(end - piece), piecesAtOnce);
    const ssize_t result = writev(file, piece, static_cast<int>(count));
    if (result < 0 && errno == EINTR) {
      continue;
    }
    if (result <= 0) {
      return false;
    }
    auto written = static_cast<std::size_t>(result);
    while (piece != end && written >= piece->iov_len) {
      written -= piece->iov_len;
      ++piece;
    }
    if (written > 0) {
      piece->iov_base = static_cast<char*>(piece->iov_base) + written;
      piece->iov_len -= written;
    }
  }
  return true;
}

}  // namespace

void GatheredText::add(std::string_view text) {
  if (!text.empty()) {
    // Only read, but the system's type knows no reading alone.
    m_pieces.push_back({const_cast<char*>(text.data()), text.size()});
  }
}

bool GatheredText::appendTo(const std::string& fileName) {
  constexpr int mode = 0666;
  // Without waiting for somebody who reads a named pipe; what is opened then waits for him.
  const int file =
      open(fileName.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, mode);
  if (file < 0) {
    return false;
  }
  fcntl(file, F_SETFL, O_APPEND);
  const bool isWritten = appendTo(file);
  const int reason = errno;
  close(file);
  errno = reason;
  return isWritten;
}

bool GatheredText::appendTo(int file) {
  struct stat before = {};
  const bool canBeCut = fstat(file, &before) == 0 && S_ISREG(before.st_mode);
  const bool isWritten = writeAll(file, m_pieces.data(), m_pieces.data() + m_pieces.size());
  const int reason = errno;
  if (!isWritten && canBeCut) {
    // No part of it, such as half a line, is better than a part.
    [[maybe_unused]] const int ignored = ftruncate(file, before.st_size);
    lseek(file, 0, SEEK_END);
  }
  errno = reason;
  return isWritten;
}
