#include "tracker/tracking/MobileDump.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

namespace {

constexpr std::size_t ahead = 8;  // nodes that are fetched while the ones before are looked at

}  // namespace

void MobileDump::write(unsigned int frame, const RememberedNodes& mobiles) {
  m_problem.clear();
  if (m_file.empty() || m_readerHasGone) {
    return;
  }
  m_pieces.clear();
  const std::string title = fmt::format("------------ Mobiles with Groups at frame {}\n", frame);
  m_pieces.add(title);
  std::size_t oldest = std::numeric_limits<std::size_t>::max();
  const auto& nodes = mobiles.inOrder();
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (i + ahead < nodes.size()) {
      __builtin_prefetch(nodes[i + ahead].node);
      __builtin_prefetch(&nodes[i + ahead].node->getFatherLinks());
    }
    const MetaLPO* const node = nodes[i].node;
    const Texts& texts = textsOf(*node);
    m_pieces.add(texts.head);
    m_pieces.add(texts.links);
    m_pieces.add(texts.chain);
    oldest = std::min(oldest, node->getIntakeNumber());
  }
  m_pieces.add("--------------------\n");
  if (!(m_descriptor < 0 ? m_pieces.appendTo(m_file) : m_pieces.appendTo(m_descriptor))) {
    const int error = errno;
    m_problem = std::strerror(error);
    m_readerHasGone = error == EPIPE || error == ENXIO;
  }
  m_hasWritten = m_hasWritten || m_problem.empty();
  forgetBefore(oldest);
}

const MobileDump::Texts& MobileDump::textsOf(const MetaLPO& node) {
  const std::size_t place = node.getIntakeNumber() - m_forgotten;
  if (place >= m_texts.size()) {
    m_texts.resize(place + 1);
  }
  Texts& texts = m_texts[place];
  if (!texts.isMade || texts.bestFather != node.getBestFatherId() ||
      texts.bestSon != node.getBestSonId() || texts.group != node.getGroupId()) {
    makeHead(node, texts);
  }
  if (!texts.isMade || texts.linkCount != node.getFatherLinks().size()) {
    makeLinks(node, texts);
  }
  if (!texts.isMade) {
    makeChain(node, texts);
  }
  texts.isMade = true;
  return texts;
}

void MobileDump::makeHead(const MetaLPO& node, Texts& texts) {
  texts.bestFather = node.getBestFatherId();
  texts.bestSon = node.getBestSonId();
  texts.group = node.getGroupId();
  m_line.clear();
  m_line.write("mobile ", node.getIdent(), " @ frame ", static_cast<int>(node.getFrame()),
               " has best father ", texts.bestFather, " has best son ", texts.bestSon,
               " and is in group ", texts.group, "\n");
  texts.head = m_line.text();
}

void MobileDump::makeLinks(const MetaLPO& node, Texts& texts) {
  texts.linkCount = node.getFatherLinks().size();
  m_line.clear();
  for (const auto& link : node.getFatherLinks()) {
    const MetaLPO* const father = link.fatherNode();
    const auto son = link.getSon();
    if (father != nullptr && son) {
      m_line.write("\tlink from ", father->getIdent(), " to ", son->getIdent(),
                   " with reliability ", TextBuffer::General{link.getReliability()}, "\n");
    }
  }
  texts.links = m_line.text();
}

void MobileDump::makeChain(const MetaLPO& node, Texts& texts) {
  m_line.clear();
  m_line.write("\tLTT chain: ");
  for (const auto& entry : node.chain()) {
    m_line.write(entry.ident, " (", TextBuffer::General{entry.reliability}, ") - ");
  }
  m_line.write("\n");
  texts.chain = m_line.text();
}

void MobileDump::forgetBefore(std::size_t number) {
  while (!m_texts.empty() && m_forgotten < number) {
    m_texts.pop_front();
    ++m_forgotten;
  }
}
