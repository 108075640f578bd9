#pragma once

#include "host/base/InputFile.h"

#include <chrono>
#include <cstddef>
#include <istream>
#include <memory>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace grouptracker {

/// Where bytes come from while the program runs: a pipe, standard input, a topic of a broker.
class ByteArrival {
 public:
  ByteArrival() = default;
  ByteArrival(const ByteArrival&) = delete;
  ByteArrival& operator=(const ByteArrival&) = delete;
  virtual ~ByteArrival() = default;

  /// What is there; a read waits for more, and the wish to stop ends the wait with
  /// `InputInterrupted`.
  virtual std::streambuf& bytes() = 0;
  /// Waits until there is something to read, or the end; false when the time is over before.
  virtual bool waitFor(std::chrono::milliseconds most) = 0;
  /// What it is called in messages.
  virtual std::string name() const = 0;
};

/// A file, a named pipe, or with the path "-" standard input.
class FileArrival : public ByteArrival {
 public:
  explicit FileArrival(const std::string& path) : m_path(path), m_file(path) {}

  std::streambuf& bytes() override { return *m_file.stream().rdbuf(); }
  bool waitFor(std::chrono::milliseconds most) override { return m_file.waitFor(most); }
  std::string name() const override { return m_path == "-" ? "standard input" : m_path; }

 private:
  std::string m_path;
  InputFile m_file;
};

/// Text that arrives, as a stream whose first line can be looked at before anybody reads it.
class ArrivingText {
 public:
  explicit ArrivingText(std::unique_ptr<ByteArrival> arrival);

  std::istream& stream() { return m_stream; }
  /// Whether a read has failed, and every further one will.
  bool isBroken() const { return m_stream.bad(); }
  std::string name() const { return m_arrival->name(); }
  /// Waits for the first line that holds more than blanks; empty when there is none.
  std::string firstLine() { return m_buffer.firstLine(); }
  /// Whether a line that holds more than blanks, or the end, is there within the time. Of a line
  /// that is longer than any message the beginning is enough.
  bool arrivesWithin(std::chrono::milliseconds most);

 private:
  /// Hands on the bytes of another buffer, of which it may hold some that are only looked at.
  class Buffer : public std::streambuf {
   public:
    explicit Buffer(std::streambuf& source) : m_source(source) {}
    std::string firstLine();
    /// Whether the end of that line is there, or so much of it that it is not waited for.
    bool holdsLine() const;
    /// Puts what is there behind the bytes that nobody has read; false at the end.
    bool fetch();

   protected:
    int_type underflow() override;

   private:
    /// Where the first line that holds more than blanks stands in the bytes that nobody has read.
    struct FirstLine {
      std::string_view bytes;  ///< as far as they are there
      bool isWhole = false;
    };

    FirstLine lookAtFirst() const;

    std::streambuf& m_source;
    std::vector<char> m_bytes;
  };

  std::unique_ptr<ByteArrival> m_arrival;
  Buffer m_buffer;
  std::istream m_stream;
};

}  // namespace grouptracker
