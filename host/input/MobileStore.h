#pragma once

#include "host/base/Database.h"
#include "host/people/InputFrame.h"

#include <kel/BoundingBox3D.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace grouptracker {

/// What can still be printed of a mobile that the tracker has forgotten.
struct ArchivedMobile {
  std::string type;
  BoundingBox3D box3D;  ///< metres

  bool operator==(const ArchivedMobile&) const = default;
};

/// Remembers mobiles by id in a temporary database, so that memory does not grow with their number;
/// it is made when the first mobile is stored. What goes wrong is an `OutputError`.
class MobileArchive {
 public:
  /// From now on remembers at least so many of the latest mobiles, and at most twice as many.
  void keepLatest(std::size_t mobiles) { m_most = mobiles; }
  /// Remembers a mobile; an older one of the same id is replaced.
  void store(std::uint32_t id, const ArchivedMobile& mobile);
  /// The mobile of that id; none when nothing was ever stored under it.
  std::optional<ArchivedMobile> load(std::uint32_t id);

 private:
  struct Table {
    std::unique_ptr<Database> database;
    Statement insertion;
    Statement query;
  };

  static std::unique_ptr<Table> makeTable();
  static std::optional<ArchivedMobile> loadFrom(Table* table, std::uint32_t id);

  std::unique_ptr<Table> m_table;  ///< null as long as nothing is stored
  std::unique_ptr<Table> m_older;  ///< the one before, when there may be so many only
  std::optional<std::size_t> m_most;
  std::size_t m_stored = 0;  ///< in the table
};

/// Finds mobiles by id for an input whose later frames may name any mobile of earlier ones. An id
/// names its latest observation. The observations of the last `window` frames are kept whole; of
/// older ones only what can still be printed, on disk, so that memory does not grow with the number
/// of ids. What the tracker still holds of an older observation is not touched by any of this.
class MobileStore {
 public:
  static constexpr std::size_t defaultWindow = 128;  // frames

  explicit MobileStore(std::size_t window = defaultWindow) : m_window(window) {}

  /// For those who ask for no mobile of an earlier frame: nothing is kept of any.
  void keepNothing() {
    m_window = 1;
    m_archives = false;
  }

  /// Of an input without end: of what is older than the window only so many are remembered.
  void keepLatest(std::size_t mobiles) { m_archive.keepLatest(mobiles); }
  /// Begins the next frame and archives what has grown too old.
  void beginFrame();
  /// Makes the id name this observation; false when the frame has declared it already.
  bool declare(const MobilePointer& mobile);
  /// The latest observation of an id, an archived one without image box and position; null for an
  /// id that was never declared. Holds until the next call.
  const MobilePointer& find(std::uint32_t id);
  /// Whether the id was declared in the frame that began last.
  bool isOfThisFrame(std::uint32_t id) const;

 private:
  struct Recent {
    MobilePointer mobile;
    std::uint64_t frame = 0;
  };

  void archiveOldest();

  std::size_t m_window;
  bool m_archives = true;
  std::uint64_t m_frame = 0;  ///< frames begun so far
  std::unordered_map<std::uint32_t, Recent> m_recent;
  std::deque<std::vector<std::uint32_t>> m_idsByFrame;  ///< the last is the current frame's
  MobileArchive m_archive;
  MobilePointer m_revived;  ///< the last one found in the archive, or null
};

}  // namespace grouptracker
