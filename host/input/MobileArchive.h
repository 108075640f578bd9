#pragma once

#include "host/base/Database.h"

#include <kel/BoundingBox3D.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace grouptracker {

/// What can still be printed of a mobile that the tracker has forgotten.
struct ArchivedMobile {
  std::string type;
  BoundingBox3D box3D;  ///< metres

  bool operator==(const ArchivedMobile&) const = default;
};

/// Remembers mobiles by id, the latest in memory and the others in a temporary database, so that
/// memory does not grow with their number. The database is made when there are so many, and has a
/// row for mobiles with neighbouring ids, since a row for each would take ten times as long. What
/// goes wrong is an `OutputError`.
class MobileArchive {
 public:
  /// `inMemory` is how many mobiles wait there until they are written together.
  explicit MobileArchive(std::size_t inMemory = 16384) : m_mostWaiting(inMemory) {}

  /// From now on remembers at least so many of the latest mobiles, and at most twice as many.
  void keepLatest(std::size_t mobiles) { m_most = mobiles; }
  /// Remembers a mobile; an older one of the same id is replaced.
  void store(std::uint32_t id, const ArchivedMobile& mobile);
  /// The mobile of that id; none when nothing was ever stored under it.
  std::optional<ArchivedMobile> load(std::uint32_t id);

 private:
  using Block = std::map<std::uint32_t, ArchivedMobile>;

  struct Table {
    std::unique_ptr<Database> database;
    Statement insertion;
    Statement query;

    Block read(std::uint32_t number);
    void write(std::uint32_t number, const Block& block);
  };

  static std::unique_ptr<Table> makeTable();
  static std::optional<ArchivedMobile> loadFrom(Table* table, std::uint32_t id);
  void writeWaiting();

  std::size_t m_mostWaiting;
  std::unordered_map<std::uint32_t, ArchivedMobile> m_waiting;  ///< of no table yet
  std::unique_ptr<Table> m_table;  ///< null as long as nothing is written
  std::unique_ptr<Table> m_older;  ///< the one before, when there may be so many only
  std::optional<std::size_t> m_most;
  std::size_t m_stored = 0;  ///< since the older table was closed
};

}  // namespace grouptracker
