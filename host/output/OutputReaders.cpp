#include "host/output/OutputReaders.h"

#include "host/base/Interruption.h"

#include <utility>

namespace grouptracker {

namespace {

class WatchedSink : public StepSink {
 public:
  WatchedSink(std::unique_ptr<StepSink> sink, OutputReaders& readers)
      : m_sink(std::move(sink)), m_readers(readers) {}

  void write(const RunStep& step) override {
    untilItsReaderLeaves([&] { m_sink->write(step); });
  }
  void take(RunStep&& step) override {
    untilItsReaderLeaves([&] { m_sink->take(std::move(step)); });
  }
  void finish() override {
    untilItsReaderLeaves([&] { m_sink->finish(); });
  }

 private:
  template <typename Do>
  void untilItsReaderLeaves(const Do& write) {
    if (!m_sink) {
      return;
    }
    try {
      write();
    } catch (const ClosedPipe& pipe) {
      m_readers.leave(pipe.what());
      m_sink.reset();
    }
  }

  std::unique_ptr<StepSink> m_sink;  ///< null when its reader has left
  OutputReaders& m_readers;
};

}  // namespace

std::unique_ptr<StepSink> OutputReaders::watch(std::unique_ptr<StepSink> sink) {
  expect();
  return std::make_unique<WatchedSink>(std::move(sink), *this);
}

void OutputReaders::expect() {
  const std::lock_guard lock(m_mutex);
  ++m_outputs;
}

void OutputReaders::leave(const std::string& file) {
  const std::lock_guard lock(m_mutex);
  ++m_left;
  m_warnings.push_back(file + ": warning: its reader has left; the other outputs go on");
}

std::vector<std::string> OutputReaders::warnings() {
  const std::lock_guard lock(m_mutex);
  auto warnings = std::exchange(m_warnings, {});
  return m_left == m_outputs ? std::vector<std::string>() : warnings;
}

bool OutputReaders::hasAnybodyLeft() const {
  const std::lock_guard lock(m_mutex);
  return m_left > 0;
}

bool OutputReaders::haveAllLeft() const {
  const std::lock_guard lock(m_mutex);
  return m_left > 0 && m_left == m_outputs;
}

}  // namespace grouptracker
