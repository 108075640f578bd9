#pragma once

#include "host/input/MobileArchive.h"
#include "host/people/InputFrame.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <unordered_map>
#include <vector>

namespace grouptracker {

/// Finds mobiles by id for an input whose later frames may name any mobile of earlier ones. An id
/// names its latest observation. The observations of the last `window` frames are kept whole; of
/// older ones only what can still be printed, in an archive, so that memory does not grow with the
/// number of ids. What the tracker still holds of an older observation is not touched by any of
/// this.
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
  /// Whether any id of an earlier frame was declared again, so that it names another mobile now.
  bool hasRenamed() const { return m_hasRenamed; }
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

  bool isArchived(std::uint32_t id);
  void archiveOldest();

  std::size_t m_window;
  bool m_archives = true;
  std::uint64_t m_frame = 0;  ///< frames begun so far
  std::unordered_map<std::uint32_t, Recent> m_recent;
  std::deque<std::vector<std::uint32_t>> m_idsByFrame;  ///< the last is the current frame's
  MobileArchive m_archive;
  std::optional<std::uint32_t> m_largestArchived;
  bool m_hasRenamed = false;
  MobilePointer m_revived;  ///< the last one found in the archive, or null
};

}  // namespace grouptracker
