#include "host/explain/MobileDump.h"

#include <cinttypes>
#include <cstdio>
#include <utility>

namespace grouptracker {

MobileDump::MobileDump(std::istream& in, const std::string& name) : m_lines(in, name) {
  readFrame();
  if (m_isAtEnd) {
    throw InputError(name, "holds no frame of a run's mobile dump");
  }
}

MobileDump::MobileDump(std::unique_ptr<InputFile> file, const std::string& path)
    : MobileDump(file->stream(), path) {
  m_file = std::move(file);
}

MobileDump::MobileDump(const std::string& path)
    : MobileDump(std::make_unique<InputFile>(path), path) {}

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
