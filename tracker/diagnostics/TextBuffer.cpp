#include "tracker/diagnostics/TextBuffer.h"

void TextBuffer::printArguments(fmt::string_view text, fmt::format_args arguments) {
  fmt::vformat_to(fmt::appender(m_text), text, arguments);
}
