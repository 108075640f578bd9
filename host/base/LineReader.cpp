#include "host/base/LineReader.h"

#include "host/base/Interruption.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t chunkSize = std::size_t{16} * 1024;  // bytes
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace

LineReader::LineReader(std::istream& in, std::string name, std::size_t longest)
    : m_in(in), m_name(std::move(name)), m_longest(longest) {}

bool LineReader::next() {
  LongWork::step();
  m_line.clear();
  ++m_number;
  try {
    if (!readChunks()) {
      return false;
    }
  } catch (const std::system_error& failure) {
    throw error("cannot be read: " + failure.code().message());
  }
  dropMarks();
  return true;
}

bool LineReader::nextFilled() {
  while (next()) {
    if (m_line.find_first_not_of(" \t\v\f\r") != std::string::npos) {
      return true;
    }
  }
  return false;
}

// istream::getline() into a buffer of its own keeps a line of gigabytes from filling the memory.
bool LineReader::readChunks() {
  std::array<char, chunkSize> chunk;
  for (;;) {
    m_in.getline(chunk.data(), chunk.size());
    const bool chunkIsFull = m_in.fail() && !m_in.eof() && m_in.gcount() > 0;
    const bool endOfLine = !m_in.fail() && !m_in.eof();
    m_line.append(chunk.data(), static_cast<std::size_t>(m_in.gcount()) - (endOfLine ? 1 : 0));
    if (m_line.size() > m_longest) {
      throw error("the line is longer than " + std::to_string(m_longest) + " bytes");
    }
    if (!chunkIsFull) {
      m_hasEnd = endOfLine;
      return endOfLine || !m_line.empty();
    }
    m_in.clear(m_in.rdstate() & ~std::ios::failbit);
  }
}

void LineReader::dropMarks() {
  if (!m_line.empty() && m_line.back() == '\r') {
    m_line.pop_back();
  }
  if (m_number == 1 && m_line.starts_with(byteOrderMark)) {
    m_line.erase(0, byteOrderMark.size());
  }
}

}  // namespace grouptracker
