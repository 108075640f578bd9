#pragma once

#include "tracker/diagnostics/GatheredText.h"
#include "tracker/diagnostics/TextBuffer.h"
#include "tracker/tracking/RememberedNodes.h"

#include <cstddef>
#include <deque>
#include <string>

/// Writes the dump of the remembered mobiles: of each one line for the node, one for each link and
/// one for its chain. Few of them change from frame to frame, so the texts are kept, and each is
/// made anew when the node no longer says what it was made from.
class MobileDump {
 public:
  MobileDump() = default;
  /// A copy goes on in the same file and makes its own texts.
  MobileDump(const MobileDump& other) : m_file(other.m_file), m_descriptor(other.m_descriptor) {}
  MobileDump& operator=(const MobileDump&) = delete;
  ~MobileDump() = default;

  /// The file that the dumps are appended to; empty for none. With a descriptor, which is not
  /// owned, that is written to and the name serves messages only.
  void setFile(const std::string& name, int descriptor = -1) {
    m_file = name;
    m_descriptor = descriptor;
  }

  /// Appends the dump of a frame. For a file that cannot be written see `problem()`; a pipe whose
  /// reader has gone gets no further one.
  void write(unsigned int frame, const RememberedNodes& mobiles);

  /// Why the latest dump is not in the file, such as "No space left on device"; empty when it is.
  const std::string& problem() const { return m_problem; }
  const std::string& file() const { return m_file; }
  /// Whether any dump is in the file.
  bool hasWritten() const { return m_hasWritten; }

 private:
  /// The texts of one node, with what the node said when they were made.
  struct Texts {
    bool isMade = false;
    int bestFather = 0;
    int bestSon = 0;
    int group = 0;
    std::size_t linkCount = 0;  ///< links only go
    std::string head;           ///< the line of the node itself
    std::string links;
    std::string chain;  ///< never changes
  };

  const Texts& textsOf(const MetaLPO& node);
  void makeHead(const MetaLPO& node, Texts& texts);
  void makeLinks(const MetaLPO& node, Texts& texts);
  void makeChain(const MetaLPO& node, Texts& texts);
  void forgetBefore(std::size_t number);

  std::string m_file;
  int m_descriptor = -1;  ///< when the file is opened by its name
  std::string m_problem;
  bool m_hasWritten = false;
  bool m_readerHasGone = false;
  std::deque<Texts> m_texts;    ///< in the order in which the nodes were taken in
  std::size_t m_forgotten = 0;  ///< nodes whose texts came before these
  TextBuffer m_line;            ///< kept for its room; the texts get just the size
  GatheredText m_pieces;        ///< kept for its room
};
