#include "tracker/diagnostics/Diagnostics.h"

bool Diagnostics::s_enabled = true;
std::FILE* Diagnostics::s_output = nullptr;
TextBuffer Diagnostics::s_buffer;

void Diagnostics::flush() {
  std::FILE* const output = s_output != nullptr ? s_output : stdout;
  const auto text = s_buffer.text();
  if (!text.empty()) {
    std::fwrite(text.data(), 1, text.size(), output);
    s_buffer.clear();
  }
  std::fflush(output);
}
