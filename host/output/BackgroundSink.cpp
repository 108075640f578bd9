#include "host/output/BackgroundSink.h"

#include <exception>

namespace grouptracker {

BackgroundSink::BackgroundSink(std::vector<std::unique_ptr<StepSink>> sinks)
    : m_sinks(std::move(sinks)),
      m_work(capacity, [this](const RunStep& step) { writeToAll(step); }) {}

void BackgroundSink::writeToAll(const RunStep& step) {
  for (const auto& sink : m_sinks) {
    sink->write(step);
  }
}

void BackgroundSink::finish() {
  std::exception_ptr failure;
  const auto attempt = [&failure](const auto& step) {
    try {
      step();
    } catch (...) {
      failure = failure ? failure : std::current_exception();
    }
  };
  attempt([this] { m_work.end(); });
  for (const auto& sink : m_sinks) {
    attempt([&sink] { sink->finish(); });
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
}

}  // namespace grouptracker
