#include "host/run/FrameReporter.h"

namespace grouptracker {

void FrameReporter::note(const InputFrame& frame) {
  ++m_frame;
  Noted& noted = m_noted.emplace_back();
  noted.inputFrame = frame.number;
  noted.persons.reserve(static_cast<std::size_t>(frame.actors.size()));
  for (const auto& actor : frame.actors) {
    noted.persons.push_back(actor->getIdent());
  }
  if (m_noted.size() > std::size_t{m_delay} + 1) {
    m_noted.pop_front();
  }
  m_owners.note(frame);
}

FrameReport FrameReporter::report(const QList<QSharedPointer<kelDataActor>>& groups) const {
  FrameReport report;
  report.frame = m_frame;
  // The process subtracts without sign as well: a delay of 2^31 and more wraps around.
  report.reportedFrame = static_cast<std::int32_t>(m_frame - m_delay);
  if (report.reportedFrame >= 1 && m_delay < m_noted.size()) {
    const Noted& reported = m_noted[m_noted.size() - 1 - m_delay];
    report.inputFrame = reported.inputFrame;
    report.persons = reported.persons;
  }
  for (const auto& group : groups) {
    report.groups.push_back(reportGroup(group));
  }
  return report;
}

GroupReport FrameReporter::reportGroup(const QSharedPointer<kelDataActor>& group) const {
  GroupReport report{group, {}};
  for (const auto& mobile : group->getLinkedPhysicalObjectList()) {
    report.persons.push_back(m_owners.ownerOf(mobile));
  }
  return report;
}

}  // namespace grouptracker
