#pragma once

#include "host/base/LineReader.h"
#include "host/input/MotReader.h"
#include "host/live/ArrivingPeople.h"

#include <istream>
#include <optional>
#include <string>

namespace grouptracker {

/// Reads lines of the MOTChallenge as they arrive, see `readMot()`: those of one frame together are
/// a message, which is known to be whole when the first line of another frame is there. Frames
/// must come in order, except those of a topic, whose sender may start anew.
class MotMessages : public MessageReader {
 public:
  /// The stream outlives the reader.
  MotMessages(std::istream& in, const std::string& name, const MotChoice& choice, bool hasCamera,
              bool isTopic, std::size_t mostPeople = MessageLimits().people)
      : m_lines(in, name, longestRow),
        m_parser(choice),
        m_hasCamera(hasCamera),
        m_isTopic(isTopic),
        m_mostPeople(mostPeople) {}

  bool next(PeopleMessage& message) override;

 private:
  void check(const MotRow& row) const;
  void add(const MotRow& row);
  void start(const MotRow& row);

  LineReader m_lines;
  MotRowParser m_parser;
  bool m_hasCamera;
  bool m_isTopic;
  std::size_t m_mostPeople;      ///< in a frame
  PeopleMessage m_open;          ///< the frame whose lines arrive
  std::optional<MotRow> m_next;  ///< the first line behind it
};

}  // namespace grouptracker
