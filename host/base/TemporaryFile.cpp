#include "host/base/TemporaryFile.h"

#include "host/base/OutputError.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace grouptracker {

FileDescriptor openTemporaryFile(std::string& folder) {
  const char* const chosen = std::getenv("TMPDIR");
  folder = chosen != nullptr && *chosen != '\0' ? chosen : "/var/tmp";
  std::string name = folder + "/grouptracker-XXXXXX";
  FileDescriptor file(::mkstemp(name.data()));
  if (!file.isOpen()) {
    throw OutputError(folder,
                      std::string("no temporary file can be made: ") + std::strerror(errno));
  }
  ::unlink(name.c_str());
  return file;
}

}  // namespace grouptracker
