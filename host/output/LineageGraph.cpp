#include "host/output/LineageGraph.h"

#include "host/base/JsonLine.h"

#include <fmt/format.h>

namespace grouptracker {

void LineageGraph::write(const RunStep& step) {
  const std::int64_t frame = step.inputFrame.value_or(step.reportedFrame);
  for (const RunGroup& group : step.groups) {
    Life& life = m_lives.try_emplace(group.id, Life{frame, frame, {}}).first->second;
    for (const RunMember& member : group.members) {
      if (group.isVisible && member.person) {
        life.persons.insert(*member.person);
      }
    }
    life.last = group.isVisible ? frame : life.last;
  }
  for (const TrackedEvent& event : step.events) {
    if (event.kind == EventKind::merged || event.kind == EventKind::split) {
      m_lives.try_emplace(*event.other, Life{frame, frame, {}});  // one that was never listed
      m_ties.push_back({*event.other, event.group, event.kind, frame});
    }
  }
}

void LineageGraph::finish() {
  std::string text =
      "digraph groups {\n"
      "  rankdir=LR;\n"
      "  node [shape=box, style=rounded, fontname=\"sans-serif\"];\n"
      "  edge [fontname=\"sans-serif\", fontsize=10];\n";
  for (const auto& [id, life] : m_lives) {
    text += fmt::format("  g{} [label=\"group {}\\nframes {} to {}\\npersons {}\"];\n", id, id,
                        life.first, life.last, json_line::joined(life.persons, ", "));
  }
  for (const Tie& tie : m_ties) {
    text += fmt::format("  g{} -> g{} [label=\"{} {}\"{}];\n", tie.from, tie.to, nameOf(tie.kind),
                        tie.frame, tie.kind == EventKind::split ? ", style=dashed" : "");
  }
  m_file.write(text + "}\n");
}

}  // namespace grouptracker
