#include "host/output/EventWriter.h"

namespace grouptracker {

void EventWriter::write(const RunStep& step) {
  for (const TrackedEvent& event : step.events) {
    m_file.writeLines(toJsonLine(event));
  }
}

}  // namespace grouptracker
