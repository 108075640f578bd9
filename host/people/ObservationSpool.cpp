#include "host/people/ObservationSpool.h"

#include "host/base/OutputError.h"
#include "host/base/SystemProblem.h"
#include "host/base/TemporaryFile.h"

#include <algorithm>
#include <cerrno>
#include <tuple>
#include <type_traits>
#include <unistd.h>

namespace grouptracker {

namespace {

constexpr std::size_t windowSize = 512;  // rows of a run that are in memory while merging

static_assert(std::is_trivially_copyable_v<ObservationRow>, "rows are written as they are");

auto order(const ObservationRow& row) {
  return std::tuple(row.frame, row.observation.person, row.line);
}

bool isBefore(const ObservationRow& a, const ObservationRow& b) {
  return order(a) < order(b);
}

off_t placeOf(std::uint64_t row) {
  return static_cast<off_t>(row * sizeof(ObservationRow));
}

}  // namespace

void ObservationSpool::add(const ObservationRow& row) {
  if (m_rows.size() == m_capacity) {
    sortBuffer();
    writeBuffer();
  }
  m_rows.push_back(row);
}

void ObservationSpool::finish() {
  sortBuffer();
  if (m_file.isOpen()) {
    writeBuffer();
  }
  rewind();
}

void ObservationSpool::rewind() {
  m_nextRow = 0;
  m_heap.clear();
  for (std::size_t i = 0; i < m_runs.size(); ++i) {
    m_runs[i].next = m_runs[i].begin;
    fillWindow(m_runs[i]);
    m_heap.push_back(i);
  }
  const auto later = [this](std::size_t a, std::size_t b) { return isLater(a, b); };
  std::make_heap(m_heap.begin(), m_heap.end(), later);
}

bool ObservationSpool::next(ObservationRow& row) {
  if (m_nextRow < m_rows.size()) {
    row = m_rows[m_nextRow++];
    return true;
  }
  if (m_heap.empty()) {
    return false;
  }
  const auto later = [this](std::size_t a, std::size_t b) { return isLater(a, b); };
  std::pop_heap(m_heap.begin(), m_heap.end(), later);
  Run& run = m_runs[m_heap.back()];
  row = run.window[run.head++];
  if (run.head == run.window.size()) {
    fillWindow(run);
  }
  if (run.window.empty()) {
    m_heap.pop_back();
  } else {
    std::push_heap(m_heap.begin(), m_heap.end(), later);
  }
  return true;
}

void ObservationSpool::sortBuffer() {
  if (!std::is_sorted(m_rows.begin(), m_rows.end(), isBefore)) {
    std::sort(m_rows.begin(), m_rows.end(), isBefore);
  }
}

void ObservationSpool::writeBuffer() {
  if (m_rows.empty()) {
    return;
  }
  if (!m_file.isOpen()) {
    m_file = openTemporaryFile(m_folder);
  }
  const auto size = static_cast<ssize_t>(m_rows.size() * sizeof(ObservationRow));
  if (::pwrite(m_file.get(), m_rows.data(), static_cast<std::size_t>(size), placeOf(m_written)) !=
      size) {
    fail("the temporary file cannot be written");
  }
  if (m_runs.empty() || isBefore(m_rows.front(), m_lastWritten)) {
    m_runs.push_back({m_written, m_written, m_written, {}, 0});
  }
  m_written += m_rows.size();
  m_runs.back().end = m_written;
  m_lastWritten = m_rows.back();
  m_rows.clear();
}

void ObservationSpool::fillWindow(Run& run) const {
  const std::uint64_t count = std::min<std::uint64_t>(windowSize, run.end - run.next);
  run.head = 0;
  run.window.resize(count);
  const auto size = static_cast<ssize_t>(count * sizeof(ObservationRow));
  if (::pread(m_file.get(), run.window.data(), static_cast<std::size_t>(size), placeOf(run.next)) !=
      size) {
    fail("the temporary file cannot be read");
  }
  run.next += count;
}

bool ObservationSpool::isLater(std::size_t a, std::size_t b) const {
  return isBefore(m_runs[b].window[m_runs[b].head], m_runs[a].window[m_runs[a].head]);
}

void ObservationSpool::fail(const char* what) const {
  throw OutputError(m_folder, systemProblem(what));
}

}  // namespace grouptracker
