#include "host/commands/StepOutputs.h"

#include "host/base/FirstFailure.h"
#include "host/output/BackgroundSink.h"

#include <exception>
#include <utility>

namespace grouptracker {

StepOutputs::StepOutputs(const StepOptions& options, StepSinks own, OutputReaders& readers)
    : m_atOnce(std::move(own)) {
  StepSinks beside;
  options.open(m_atOnce, beside);
  for (StepSinks* const sinks : {&m_atOnce, &beside}) {
    for (auto& sink : *sinks) {
      sink = readers.watch(std::move(sink));
    }
  }
  if (!beside.empty()) {
    m_beside = std::make_unique<BackgroundSink>(std::move(beside));
  }
}

void StepOutputs::take(RunStep&& step) {
  for (const auto& sink : m_atOnce) {
    sink->write(step);
  }
  if (m_beside) {
    m_beside->take(std::move(step));
  }
}

void StepOutputs::finish() {
  FirstFailure failure;
  for (const auto& sink : m_atOnce) {
    failure.attempt([&sink] { sink->finish(); });
  }
  if (m_beside) {
    failure.attempt([this] { m_beside->finish(); });
  }
  failure.rethrow();
}

void StepOutputs::finishAfterFailure() {
  try {
    finish();
  } catch (const std::exception&) {
    // The first failure is the one to report.
  }
}

}  // namespace grouptracker
