#pragma once

#include "host/base/FileDescriptor.h"

#include <kel/BoundingBox3D.h>

#include <cstdint>
#include <optional>
#include <string>

namespace grouptracker {

/// What can still be printed of a mobile that the tracker has forgotten.
struct ArchivedMobile {
  std::string type;
  BoundingBox3D box3D;  ///< metres

  bool operator==(const ArchivedMobile&) const = default;
};

/// Remembers mobiles by id without using memory: in a temporary file with one slot of fixed size
/// for each possible id. The file is sparse, so that it takes room only for the ids in use; it has
/// no name, so that it vanishes with the program however that ends. It is made in the folder of the
/// environment variable TMPDIR, else in /var/tmp, when the first mobile is stored.
/// A file that cannot be made, written or read is an `OutputError`.
class MobileArchive {
 public:
  /// Remembers a mobile; an older one of the same id is replaced.
  void store(std::uint32_t id, const ArchivedMobile& mobile);
  /// The mobile of that id; none when nothing was ever stored under it.
  std::optional<ArchivedMobile> load(std::uint32_t id) const;

 private:
  void open();
  std::uint64_t appendText(const std::string& text);
  [[noreturn]] void fail(const char* what) const;

  std::string m_folder;
  FileDescriptor m_file;
  std::uint64_t m_textEnd = 0;  ///< bytes; where the next long type name goes
};

}  // namespace grouptracker
