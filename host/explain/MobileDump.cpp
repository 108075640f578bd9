#include "host/explain/MobileDump.h"

#include <cinttypes>
#include <cstdio>

namespace grouptracker {

MobileDump::MobileDump(const std::string& path) : m_file(path), m_lines(m_file.stream(), path) {
  readFrame();
  if (m_isAtEnd) {
    throw InputError(path, "holds no frame of a run's mobile dump");
  }
}

const MobileDump::Mobiles& MobileDump::at(std::uint32_t frame) {
  static const Mobiles nothing;
  while (m_frame < frame && !m_isAtEnd) {
    readFrame();
  }
  return m_frame == frame ? m_mobiles : nothing;
}

// Reads up to the head line of the frame that follows.
void MobileDump::readFrame() {
  m_frame = m_nextFrame;
  m_mobiles.clear();
  Mobile* latest = nullptr;
  while (m_lines.next()) {
    const char* const line = m_lines.line().c_str();
    std::int64_t id = 0;
    Mobile mobile;
    Link link;
    if (std::sscanf(line, "------------ Mobiles with Groups at frame %" SCNu32, &m_nextFrame) ==
        1) {
      return;
    }
    if (std::sscanf(line,
                    "mobile %" SCNd64 " @ frame %d has best father %" SCNd64
                    " has best son %" SCNd64 " and is in group %d",
                    &id, &mobile.frame, &mobile.bestFather, &mobile.bestSon, &mobile.group) == 5) {
      mobile.bestFather = knownId(mobile.bestFather);
      mobile.bestSon = knownId(mobile.bestSon);
      latest = &m_mobiles.insert_or_assign(knownId(id), mobile).first->second;
    } else if (latest != nullptr &&
               std::sscanf(line, "\tlink from %" SCNd64 " to %*d with reliability %lf",
                           &link.father, &link.reliability) == 2) {
      link.father = knownId(link.father);
      latest->links.push_back(link);
    }
  }
  m_isAtEnd = true;
}

}  // namespace grouptracker
