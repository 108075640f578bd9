#include "tracker/display/GroupView.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Numbering.h"
#include "tracker/tracking/Group.h"

namespace {

DisplayGroup toRecord(const Group& group, int frame) {
  DisplayGroup record(static_cast<unsigned int>(group.getId()), group.getColor(),
                      group.getComment());
  for (const auto& [ident, node] : group.getMobiles()) {
    if (!node.isNull() && static_cast<int>(node->getFrame()) == frame) {
      record.addMobile(static_cast<unsigned int>(ident), node->observation().getBoundingBox2D());
    }
  }
  return record;
}

}  // namespace

void GroupView::setGroups(const QMap<int, QSharedPointer<Group>>& groups) {
  m_records.clear();
  for (auto it = groups.cbegin(); it != groups.cend(); ++it) {
    if (!it.value().isNull()) {
      m_records.emplace(it.key(), toRecord(*it.value(), shownFrame()));
    }
  }
  Diagnostics::print("comment (updateDisplay):");
}

void GroupView::draw() {
  constexpr int pointSize = 12;
  if (shownFrame() >= 0) {
    m_font = QFont("comic sans ms", pointSize, QFont::Bold);
  }
}

int GroupView::shownFrame() const {
  return delayed(static_cast<unsigned int>(m_frameNumber));
}
