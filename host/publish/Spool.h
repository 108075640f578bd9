#pragma once

#include "host/base/Database.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// The topics whose messages all arrive, one after the other.
enum class Channel : std::uint8_t { groups, events };

inline constexpr int channels = 2;

/// One JSON object that is to be sent.
struct Outgoing {
  Channel channel = Channel::groups;
  std::string object;
};

/// Keeps what is to be sent, in order, until somebody has it: in a file it outlives the program,
/// however that ends. Each message gets a counter of its channel, from 1, as the object's first key
/// "sequence"; in a file the counters go on where they were. Of more than the capacity the oldest
/// are dropped. What cannot be written is an `OutputError`, and leaves the spool as it was.
class Spool {
 public:
  struct Message {
    std::int64_t id = 0;  ///< grows from message to message
    Channel channel = Channel::groups;
    std::string payload;
  };

  /// In memory when the path is empty; `capacity` in bytes. A file that is no spool is an
  /// `OutputError`.
  Spool(const std::string& path, std::size_t capacity);
  Spool(const Spool&) = delete;
  Spool& operator=(const Spool&) = delete;

  /// Keeps all of these or none.
  void append(const std::vector<Outgoing>& messages);
  /// The oldest message behind an id; 0 is before all.
  std::optional<Message> nextAfter(std::int64_t id);
  /// Somebody has a message. One that was dropped meanwhile is passed over.
  void remove(std::int64_t id);

  /// Whether `settle()` is due: so much was written that it is worth the while and nobody waits for
  /// a message, or far too much.
  bool isUnsettled() const;
  /// Brings what was written from the file's log, which grows without it, to its place. Since it
  /// waits for the disk, unlike all else it may be called while another thread uses the spool.
  void settle();

  std::uint64_t messages() const { return m_messages; }
  std::size_t bytes() const { return m_bytes; }
  std::uint64_t dropped() const { return m_dropped; }
  bool isFile() const { return m_isFile; }

 private:
  static std::unique_ptr<Database> open(const std::string& path);
  void readState();
  void write(const std::vector<Outgoing>& messages);
  void keep(const Outgoing& message);
  void dropOldest();

  bool m_isFile;
  std::size_t m_capacity;
  std::unique_ptr<Database> m_database;
  std::unique_ptr<Database> m_settling;  ///< the same file, for `settle()`; null in memory
  int m_loggedPages = 0;                 ///< of the file's log
  Statement m_insert;
  Statement m_count;
  Statement m_next;
  Statement m_size;
  Statement m_delete;
  std::array<std::int64_t, channels> m_counters{};  ///< of the latest message of each channel
  std::int64_t m_lastId = 0;
  std::uint64_t m_messages = 0;
  std::size_t m_bytes = 0;
  std::uint64_t m_dropped = 0;
};

}  // namespace grouptracker
