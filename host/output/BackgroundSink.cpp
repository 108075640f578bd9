#include "host/output/BackgroundSink.h"

#include "host/base/FirstFailure.h"

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
  FirstFailure failure;
  failure.attempt([this] { m_work.end(); });
  for (const auto& sink : m_sinks) {
    failure.attempt([&sink] { sink->finish(); });
  }
  failure.rethrow();
}

}  // namespace grouptracker
