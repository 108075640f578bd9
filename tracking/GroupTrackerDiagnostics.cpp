#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <string>

#include "Diagnostics.h"
#include "GroupTracker.h"

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

void writeHead(std::string& text, const MetaLPO& node) {
  fmt::format_to(std::back_inserter(text),
                 "mobile {} @ frame {} has best father {} has best son {} and is in group {}\n",
                 node.getIdent(), node.getFrame(), node.getBestFatherId(), node.getBestSonId(),
                 node.getGroupId());
}

void writeTail(std::string& text, const MetaLPO& node) {
  const auto out = std::back_inserter(text);
  for (const auto& link : node.getFatherLinks()) {
    const MetaLPO* father = link->fatherNode();
    const auto son = link->getSon();
    if (father != nullptr && son) {
      fmt::format_to(out, "\tlink from {} to {} with reliability {:g}\n", father->getIdent(),
                     son->getIdent(), link->getReliability());
    }
  }
  fmt::format_to(out, "\tLTT chain: ");
  for (const auto& [ident, reliability] : node.chain()) {
    fmt::format_to(out, "{} ({:g}) - ", ident, reliability);
  }
  fmt::format_to(out, "\n");
}

void dumpNode(fmt::memory_buffer& out, const MetaLPO& node) {
  auto& [head, tail] = node.dumpText();
  if (head.empty()) {
    writeHead(head, node);
  }
  if (tail.empty()) {
    writeTail(tail, node);
  }
  out.append(head);
  out.append(tail);
}

}  // namespace

void GroupTracker::printGroups() const {
  if (!Diagnostics::enabled()) {
    return;
  }
  Diagnostics::print("------------ Groups:\n");
  for (const auto& group : m_groups) {
    Diagnostics::print("- {}, mobiles: ", group->getId());
    for (const auto& [id, member] : group->getMobiles()) {
      Diagnostics::write(id, " ");
    }
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
  static fmt::memory_buffer text;  // kept for its room: the dump of a crowd has megabytes
  text.clear();
  const auto out = fmt::appender(text);
  fmt::format_to(out, "------------ Mobiles with Groups at frame {}\n", m_currentFrame);
  for (const auto& [id, node] : m_mobiles.byId()) {
    dumpNode(text, *node);
  }
  fmt::format_to(out, "--------------------\n");
  std::ofstream file(m_mobileDump, std::ios::out | std::ios::app);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void GroupTracker::ancestors(const QSharedPointer<kelDataLinkedPhysicalObject>& object) const {
  for (const auto& father : object->getFathers()) {
    Diagnostics::print("{} ", static_cast<int>(father->getIdent()));
    ancestors(father);
  }
}
