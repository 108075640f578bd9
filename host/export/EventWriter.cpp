#include "EventWriter.h"

void EventWriter::write(const ReportedStep& step) {
  for (const GroupEvent& event : step.events) {
    m_file.writeLines(toJsonLine(event));
  }
}
