#include "StepOutputs.h"

#include "BackgroundSink.h"
#include "CsvExport.h"
#include "EventWriter.h"
#include "LineageGraph.h"
#include "MotExport.h"
#include "SqliteExport.h"

#include <exception>
#include <string>
#include <utility>

namespace {

using Sinks = std::vector<std::unique_ptr<StepSink>>;

template <typename Sink>
void addSink(Sinks& sinks, const std::string& file) {
  if (!file.empty()) {
    sinks.push_back(std::make_unique<Sink>(file));
  }
}

}  // namespace

StepOutputs::StepOutputs(const StepOptions& options, const ParameterFile&) {
  addSink<EventWriter>(m_sinks, options.eventFile);
  Sinks slow;
  addSink<LineageGraph>(slow, options.graphFile);
  addSink<MotExport>(slow, options.motFile);
  addSink<CsvExport>(slow, options.csvFile);
  addSink<SqliteExport>(slow, options.databaseFile);
  if (!slow.empty()) {
    m_sinks.push_back(std::make_unique<BackgroundSink>(std::move(slow)));
  }
}

void StepOutputs::note(const InputFrame&) {}

void StepOutputs::write(const FrameReport& report) {
  ReportedStep step;
  step.groups = toGroupsFrame(report);
  step.events = m_detector.next(step.groups);
  for (const auto& sink : m_sinks) {
    sink->write(step);
  }
}

void StepOutputs::finish() {
  for (const auto& sink : m_sinks) {
    sink->finish();
  }
}

void StepOutputs::finishAfterFailure() {
  try {
    finish();
  } catch (const std::exception&) {
    // The first failure is the one to report.
  }
}
