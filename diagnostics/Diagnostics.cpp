#include "Diagnostics.h"

#include <cstdio>

bool Diagnostics::s_enabled = true;
fmt::memory_buffer Diagnostics::s_buffer;

void Diagnostics::flush() {
  if (s_buffer.size() > 0) {
    std::fwrite(s_buffer.data(), 1, s_buffer.size(), stdout);
    s_buffer.clear();
  }
  std::fflush(stdout);
}
