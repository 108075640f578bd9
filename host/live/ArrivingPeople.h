#pragma once

#include "host/base/InputError.h"
#include "host/base/LineReader.h"
#include "host/base/Log.h"
#include "host/live/ArrivingText.h"
#include "host/live/PeopleMessage.h"
#include "host/live/ReorderBuffer.h"
#include "host/people/ObservationSource.h"

#include <exception>
#include <functional>
#include <memory>
#include <string>

namespace grouptracker {

/// Reads what a text says about people, one moment after the other, in whatever form it does.
class MessageReader {
 public:
  MessageReader() = default;
  MessageReader(const MessageReader&) = delete;
  MessageReader& operator=(const MessageReader&) = delete;
  virtual ~MessageReader() = default;

  /// Replaces `message` by the next one; false at the end. A message that is wrong is an
  /// `InputError`, behind which the next one can be read.
  virtual bool next(PeopleMessage& message) = 0;
};

/// Reads people messages, one a line.
class JsonMessages : public MessageReader {
 public:
  /// The stream outlives the reader.
  JsonMessages(std::istream& in, const std::string& name, const MessageMap& map, bool hasCamera,
               const MessageLimits& limits = {})
      : m_lines(in, name), m_parser(map, hasCamera, limits) {}

  bool next(PeopleMessage& message) override;

 private:
  LineReader m_lines;
  PeopleMessageParser m_parser;
};

/// How people who arrive are taken.
struct ArrivalOptions {
  double maxLateness = 0.5;                 ///< seconds that a message may come too late
  bool isLive = true;                       ///< rather than in a file, of which all is there
  ProblemHandler onProblem = throwProblem;  ///< hears of messages that are wrong
  std::function<void(const std::string&)> onWarning = [](const std::string&) {};
  /// Hears of the counts whenever they change; may be empty.
  std::function<void(const ReorderBuffer::Counts&)> watch;
};

/// The people of messages as they arrive, in order. When the reading fails, everybody who arrived
/// before is handed out first.
class ArrivingPeople : public ObservationSource {
 public:
  ArrivingPeople(std::shared_ptr<ArrivingText> text, std::unique_ptr<MessageReader> reader,
                 const ArrivalOptions& options)
      : m_text(std::move(text)),
        m_reader(std::move(reader)),
        m_order(options.maxLateness),
        m_options(options) {}

  bool next(ObservationStep& step) override;

 private:
  void await();
  void read();
  void end();
  void warn();

  std::shared_ptr<ArrivingText> m_text;
  std::unique_ptr<MessageReader> m_reader;
  ReorderBuffer m_order;
  ArrivalOptions m_options;
  bool m_hasEnded = false;
  std::exception_ptr m_failure;  ///< to be told behind what came before it
  ReorderBuffer::Counts m_told;
  OnceInAWhile m_telling;
};

}  // namespace grouptracker
