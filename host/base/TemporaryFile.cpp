#include "host/base/TemporaryFile.h"

#include "host/base/OutputError.h"
#include "host/base/SystemProblem.h"

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace grouptracker {

FileDescriptor openTemporaryFile(std::string& folder) {
  const char* const chosen = std::getenv("TMPDIR");
  folder = chosen != nullptr && *chosen != '\0' ? chosen : "/var/tmp";
  std::string name = folder + "/grouptracker-XXXXXX";
  FileDescriptor file(::mkstemp(name.data()));
  if (!file.isOpen()) {
    throw OutputError(folder, systemProblem("no temporary file can be made"));
  }
  ::unlink(name.c_str());
  return file;
}

}  // namespace grouptracker
