#pragma once

#include "host/base/FileDescriptor.h"

#include <string>

namespace grouptracker {

/// A folder in which one recording is made, once. As long as its maker lives it is locked by a file
/// beside it, NAME@HOST.KEY.lock, which the system gives up with the process, however that ends.
class WorkFolder {
 public:
  /// A path below a folder that no other making of the recording has.
  static std::string newPath(const std::string& parent, const std::string& name);
  /// Removes below a folder what dead makers on this machine left. Whether those of other machines
  /// live nobody knows: what they left goes when it is days old.
  static void removeLeft(const std::string& parent);
  /// Removes a folder and its lock.
  static void remove(const std::string& path);

  /// Makes the folder, with those above it. What cannot be made is an `OutputError`.
  explicit WorkFolder(const std::string& path);

 private:
  FileDescriptor m_lock;
};

}  // namespace grouptracker
