#include "host/commands/RunStatus.h"

#include "host/output/WholeFile.h"

#include <fmt/format.h>

namespace grouptracker {

RunStatus::RunStatus(const std::string& path) : m_path(path) {
  write(false, 0);
}

void RunStatus::complete(std::uint64_t frames) const {
  write(true, frames);
}

void RunStatus::write(bool isComplete, std::uint64_t frames) const {
  if (!m_path.empty()) {
    WholeFile(m_path).write(
        fmt::format("{{\"complete\": {}, \"frames\": {}}}\n", isComplete, frames));
  }
}

}  // namespace grouptracker
