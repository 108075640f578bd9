#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/diagnostics/GatheredText.h"
#include "tracker/tracking/GroupTracker.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace {

void printEvents(const char* what, const std::list<Group::Event>& events) {
  if (events.empty()) {
    return;
  }
  Diagnostics::print(", {}", what);
  const char* separator = "";
  for (const auto& [other, frame] : events) {
    Diagnostics::print("{} {} at frame {}", separator, other, frame);
    separator = ",";
  }
}

// The texts are put together in buffers that are kept for their room; the nodes get texts of just
// the size.
void makeHead(const MetaLPO& node, std::string& head) {
  static TextBuffer line;
  line.clear();
  line.write("mobile ", node.getIdent(), " @ frame ", static_cast<int>(node.getFrame()),
             " has best father ", node.getBestFatherId(), " has best son ", node.getBestSonId(),
             " and is in group ", node.getGroupId(), "\n");
  head = line.text();
}

void makeLinks(const MetaLPO& node, std::string& text) {
  static TextBuffer lines;
  lines.clear();
  for (const auto& link : node.getFatherLinks()) {
    const MetaLPO* father = link.fatherNode();
    const auto son = link.getSon();
    if (father != nullptr && son) {
      lines.write("\tlink from ", father->getIdent(), " to ", son->getIdent(), " with reliability ",
                  TextBuffer::General{link.getReliability()}, "\n");
    }
  }
  text = lines.text();
}

void makeChain(const MetaLPO& node, std::string& text) {
  static TextBuffer line;
  line.clear();
  line.write("\tLTT chain: ");
  for (const auto& entry : node.chain()) {
    line.write(entry.ident, " (", TextBuffer::General{entry.reliability}, ") - ");
  }
  line.write("\n");
  text = line.text();
}

const MetaLPO::DumpText& dumpOf(const MetaLPO& node) {
  MetaLPO::DumpText& text = node.dumpText();
  if (text.head.empty()) {
    makeHead(node, text.head);
  }
  if (!text.hasLinks) {
    makeLinks(node, text.links);
    text.hasLinks = true;
  }
  if (text.chain.empty()) {
    makeChain(node, text.chain);
  }
  return text;
}

}  // namespace

void GroupTracker::printGroups() const {
  if (!Diagnostics::enabled()) {
    return;
  }
  Diagnostics::print("------------ Groups:\n");
  for (const auto& group : m_groups) {
    Diagnostics::print("- {}, mobiles: ", group->getId());
    Diagnostics::write(std::string_view(group->memberIds()));
    Diagnostics::print("startFrame={}, endFrame={}, isUpdated={}", group->getStartFrame(),
                       group->getEndFrame(), group->isUpdated() ? "true" : "false");
    printEvents("merged with", group->getMerges());
    printEvents("splitted from", group->getSplits());
    Diagnostics::print("\n");
  }
  Diagnostics::print("--------------------\n");
}

void GroupTracker::printMetaMobiles() const {
  if (m_mobileDump.empty()) {
    return;
  }
  constexpr std::size_t ahead = 8;  // nodes that are fetched while the ones before are looked at
  static GatheredText dump;         // kept for its room
  dump.clear();
  const std::string title =
      fmt::format("------------ Mobiles with Groups at frame {}\n", m_currentFrame);
  dump.add(title);
  const auto& nodes = m_mobiles.inOrder();
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (i + ahead < nodes.size()) {
      const MetaLPO::DumpText& text = nodes[i + ahead].node->dumpText();
      __builtin_prefetch(&text.head);
      __builtin_prefetch(&text.hasLinks);
    }
    const MetaLPO::DumpText& text = dumpOf(*nodes[i].node);
    dump.add(text.head);
    dump.add(text.links);
    dump.add(text.chain);
  }
  dump.add("--------------------\n");
  dump.appendTo(m_mobileDump);
}

void GroupTracker::ancestors(const QSharedPointer<kelDataLinkedPhysicalObject>& object) const {
  for (const auto& father : object->getFathers()) {
    Diagnostics::print("{} ", static_cast<int>(father->getIdent()));
    ancestors(father);
  }
}
