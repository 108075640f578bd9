#include "benchmarks/FormattedText.h"

#include "tracker/diagnostics/NumberText.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace {

bool startsNumber(std::string_view text, std::size_t at) {
  const auto isDigit = [&](std::size_t i) {
    return i < text.size() && text[i] >= '0' && text[i] <= '9';
  };
  return isDigit(at) || (text[at] == '-' && isDigit(at + 1));
}

std::size_t endOfNumber(std::string_view text, std::size_t at) {
  const std::size_t end = text.find_first_not_of("0123456789.-e+", at);
  return end == std::string_view::npos ? text.size() : end;
}

std::string escaped(const std::string& literal) {
  std::string format;
  for (const char c : literal) {
    format += c == '%' ? "%%" : std::string(1, c);
  }
  return format;
}

}  // namespace

FormattedText::FormattedText(std::string_view text) : m_text(text), m_buffer(text.size() + 64) {
  Piece piece;
  for (std::size_t at = 0; at < text.size();) {
    if (!startsNumber(text, at)) {
      piece.literal += text[at++];
      continue;
    }
    const std::string number(text.substr(at, endOfNumber(text, at) - at));
    piece.kind = number.find('.') == std::string::npos ? 'd' : 'f';
    piece.number = std::strtod(number.c_str(), nullptr);
    m_pieces.push_back(piece);
    piece = {};
    at += number.size();
  }
  m_pieces.push_back(piece);
  gatherCalls();
}

void FormattedText::gatherCalls() {
  constexpr std::size_t mostNumbers = 3;
  Call call;
  for (const Piece& piece : m_pieces) {
    // A line is one call, and so are three numbers of a long line.
    const std::size_t lineEnd = piece.literal.rfind('\n');
    if (lineEnd != std::string::npos) {
      call.format += escaped(piece.literal.substr(0, lineEnd + 1));
      m_calls.push_back(call);
      call = {};
      call.format = escaped(piece.literal.substr(lineEnd + 1));
    } else {
      call.format += escaped(piece.literal);
    }
    if (piece.kind != ' ') {
      call.numbers[call.kinds.size()] = piece.number;
      call.format += piece.kind == 'd' ? "%d" : "%f";
      call.kinds += piece.kind;
    }
    if (call.kinds.size() == mostNumbers) {
      m_calls.push_back(call);
      call = {};
    }
  }
  m_calls.push_back(call);
}

// The formats were taken from text at run time, so the compiler cannot check them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
void FormattedText::writeWithPrintf() const {
  for (const auto& [text, kinds, n] : m_calls) {
    const char* const f = text.c_str();
    const auto whole = [&](int i) { return static_cast<int>(n[i]); };
    if (kinds.empty()) {
      std::printf(f);
    } else if (kinds == "d") {
      std::printf(f, whole(0));
    } else if (kinds == "f") {
      std::printf(f, n[0]);
    } else if (kinds == "dd") {
      std::printf(f, whole(0), whole(1));
    } else if (kinds == "df") {
      std::printf(f, whole(0), n[1]);
    } else if (kinds == "fd") {
      std::printf(f, n[0], whole(1));
    } else if (kinds == "ff") {
      std::printf(f, n[0], n[1]);
    } else if (kinds == "ddd") {
      std::printf(f, whole(0), whole(1), whole(2));
    } else if (kinds == "ddf") {
      std::printf(f, whole(0), whole(1), n[2]);
    } else if (kinds == "dff") {
      std::printf(f, whole(0), n[1], n[2]);
    } else {
      std::printf(f, n[0], n[1], n[2]);
    }
  }
  std::fflush(stdout);
}
#pragma GCC diagnostic pop

void FormattedText::writeWithStream(const std::string& fileName) const {
  std::ofstream file(fileName, std::ios::out | std::ios::app);
  for (const Piece& piece : m_pieces) {
    file << piece.literal;
    if (piece.kind == 'd') {
      file << static_cast<int>(piece.number);
    } else if (piece.kind == 'f') {
      file << piece.number;
    }
  }
}

template <typename WriteInt, typename WriteFixed>
void FormattedText::write(const WriteInt& writeInt, const WriteFixed& writeFixed) const {
  char* out = m_buffer.data();
  char* const end = out + m_buffer.size();
  for (const Piece& piece : m_pieces) {
    if (static_cast<std::size_t>(end - out) < piece.literal.size() + 32) {
      return;
    }
    std::memcpy(out, piece.literal.data(), piece.literal.size());
    out += piece.literal.size();
    if (piece.kind == 'd') {
      out = writeInt(out, static_cast<int>(piece.number));
    } else if (piece.kind == 'f') {
      out = writeFixed(out, piece.number);
    }
  }
}

void FormattedText::writeWithToChars() const {
  char* const end = m_buffer.data() + m_buffer.size();
  write([end](char* out, int number) { return std::to_chars(out, end, number).ptr; },
        [end](char* out, double number) {
          return std::to_chars(out, end, number, std::chars_format::fixed, 6).ptr;
        });
}

void FormattedText::writeWithNumberText() const {
  write(NumberText::writeInt, NumberText::writeFixed);
}

void FormattedText::copy() const {
  std::memcpy(m_buffer.data(), m_text.data(), m_text.size());
}
