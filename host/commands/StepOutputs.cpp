#include "host/commands/StepOutputs.h"

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
  std::exception_ptr failure;
  const auto finishOne = [&failure](StepSink& sink) {
    try {
      sink.finish();
    } catch (...) {
      failure = failure ? failure : std::current_exception();
    }
  };
  for (const auto& sink : m_atOnce) {
    finishOne(*sink);
  }
  if (m_beside) {
    finishOne(*m_beside);
  }
  if (failure) {
    std::rethrow_exception(failure);
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
