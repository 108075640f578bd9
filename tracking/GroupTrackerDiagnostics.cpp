#include <fmt/format.h>

#include <fstream>
#include <string>
#include <string_view>

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

// Text and numbers one behind the other; a dump of a crowd is millions of them.
class DumpWriter {
 public:
  DumpWriter& operator<<(std::string_view text) {
    m_text.append(text);
    return *this;
  }
  DumpWriter& operator<<(int id) {
    char digits[NumberText::intSize];
    return *this << std::string_view(digits, NumberText::writeInt(digits, id));
  }
  DumpWriter& operator<<(double reliability) {
    char digits[NumberText::generalSize];
    return *this << std::string_view(digits, NumberText::writeGeneral(digits, reliability));
  }
  const std::string& text() const { return m_text; }

 private:
  std::string m_text;
};

std::string headOf(const MetaLPO& node) {
  DumpWriter out;
  out << "mobile " << node.getIdent() << " @ frame " << static_cast<int>(node.getFrame())
      << " has best father " << node.getBestFatherId() << " has best son " << node.getBestSonId()
      << " and is in group " << node.getGroupId() << "\n";
  return out.text();
}

std::string tailOf(const MetaLPO& node) {
  DumpWriter out;
  for (const auto& link : node.getFatherLinks()) {
    const MetaLPO* father = link->fatherNode();
    const auto son = link->getSon();
    if (father != nullptr && son) {
      out << "\tlink from " << father->getIdent() << " to " << son->getIdent()
          << " with reliability " << link->getReliability() << "\n";
    }
  }
  out << "\tLTT chain: ";
  for (const auto& [ident, reliability] : node.chain()) {
    out << ident << " (" << reliability << ") - ";
  }
  out << "\n";
  return out.text();
}

const std::string& dumpOf(const MetaLPO& node) {
  auto& [text, headSize, hasTail] = node.dumpText();
  if (headSize == 0) {
    const std::string head = headOf(node);
    text.insert(0, head);
    headSize = head.size();
  }
  if (!hasTail) {
    text += tailOf(node);
    hasTail = true;
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
  for (const auto& [id, node] : m_mobiles.inOrder()) {
    text.append(dumpOf(*node));
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
