#include "tracker/diagnostics/Diagnostics.h"

#include <cstdio>

bool Diagnostics::s_enabled = true;
TextBuffer Diagnostics::s_buffer;

void Diagnostics::flush() {
  const auto text = s_buffer.text();
  if (!text.empty()) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    s_buffer.clear();
  }
  std::fflush(stdout);
}
