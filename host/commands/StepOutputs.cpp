#include "host/commands/StepOutputs.h"

#include "host/output/BackgroundSink.h"
#include "host/output/CsvExport.h"
#include "host/output/EventWriter.h"
#include "host/output/LineageGraph.h"
#include "host/output/MotExport.h"
#include "host/output/SqliteExport.h"
#include "host/pictures/PictureWriter.h"
#include "host/run/PeopleInView.h"

#include <exception>
#include <string>
#include <utility>

namespace grouptracker {

namespace {

using Sinks = std::vector<std::unique_ptr<StepSink>>;

template <typename Sink>
void addSink(Sinks& sinks, const std::string& file) {
  if (!file.empty()) {
    sinks.push_back(std::make_unique<Sink>(file));
  }
}

}  // namespace

StepOutputs::StepOutputs(const StepOptions& options, const ParameterFile& parameters)
    : m_draws(options.wantsPictures()),
      m_imagesAreDrawnOn(parameters.needsImages),
      m_delay(parameters.delay) {
  addSink<EventWriter>(m_sinks, options.eventFile);
  Sinks slow;
  addSink<LineageGraph>(slow, options.graphFile);
  addSink<MotExport>(slow, options.motFile);
  addSink<CsvExport>(slow, options.csvFile);
  addSink<SqliteExport>(slow, options.databaseFile);
  if (m_draws) {
    slow.push_back(std::make_unique<PictureWriter>(options.pictures));
  }
  if (!slow.empty()) {
    m_sinks.push_back(std::make_unique<BackgroundSink>(std::move(slow)));
  }
}

void StepOutputs::note(const InputFrame& frame) {
  if (!m_draws) {
    return;
  }
  Noted noted{peopleInView(frame), frame.imageFile, frame.image, frame.place};
  if (frame.image && frame.imageFile.empty() && m_imagesAreDrawnOn) {
    noted.image = QSharedPointer<kelDataImage>::create(frame.image->mat().clone());
  } else if (!frame.imageFile.empty()) {
    noted.image.reset();  // read again when it is drawn on, which costs the tracking nothing
  }
  m_noted.push_back(std::move(noted));
  if (m_noted.size() > m_delay + 1) {
    m_noted.pop_front();
  }
}

void StepOutputs::write(const FrameReport& report) {
  ReportedStep step;
  step.groups = toGroupsFrame(report);
  step.events = m_detector.next(step.groups);
  if (step.groups.inputFrame && m_noted.size() > m_delay) {
    const Noted& reported = m_noted.front();
    step.people = reported.people;
    step.imageFile = reported.imageFile;
    step.image = reported.image;
    step.place = reported.place;
  }
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

}  // namespace grouptracker
