#pragma once

#include "host/base/LineReader.h"
#include "host/input/MotReader.h"
#include "host/live/ArrivingPeople.h"

#include <istream>
#include <optional>
#include <string>

namespace grouptracker {

/// Reads lines of the MOTChallenge as they arrive, see `readMot()`: those of one frame together are
/// a message, which is known to be whole when the first line of the next frame is there. Frames
/// must come in order.
class MotMessages : public MessageReader {
 public:
  /// The stream outlives the reader.
  MotMessages(std::istream& in, const std::string& name, const MotChoice& choice, bool hasCamera)
      : m_lines(in, name, longestRow), m_parser(choice), m_hasCamera(hasCamera) {}

  bool next(PeopleMessage& message) override;

 private:
  void check(const MotRow& row) const;
  void add(const MotRow& row);
  void start(const MotRow& row);

  LineReader m_lines;
  MotRowParser m_parser;
  bool m_hasCamera;
  PeopleMessage m_open;          ///< the frame whose lines arrive
  std::optional<MotRow> m_next;  ///< the first line behind it
};

}  // namespace grouptracker
