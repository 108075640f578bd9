#include "host/commands/StepOutputs.h"

#include "host/output/BackgroundSink.h"

#include <exception>
#include <utility>

namespace grouptracker {

StepOutputs::StepOutputs(const StepOptions& options, StepSinks own) : m_atOnce(std::move(own)) {
  StepSinks beside;
  options.open(m_atOnce, beside);
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
  for (const auto& sink : m_atOnce) {
    sink->finish();
  }
  if (m_beside) {
    m_beside->finish();
  }
}

void StepOutputs::finishAfterFailure() {
  try {
    finish();
  } catch (const std::exception&) {
    // The first failure is the one to report.
  }
}

}  // namespace grouptracker
