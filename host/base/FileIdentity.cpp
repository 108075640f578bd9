#include "host/base/FileIdentity.h"

#include "host/base/OutputError.h"

#include <cstddef>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace grouptracker {

namespace {

bool areSameFile(const std::string& a, const std::string& b) {
  struct stat ofA = {};
  struct stat ofB = {};
  if (::stat(a.c_str(), &ofA) == 0 && ::stat(b.c_str(), &ofB) == 0) {
    return S_ISREG(ofA.st_mode) && ofA.st_dev == ofB.st_dev && ofA.st_ino == ofB.st_ino;
  }
  // Neither may exist yet: then they are the same when their names lead to the same place.
  std::error_code ignored;
  return std::filesystem::weakly_canonical(a, ignored) ==
         std::filesystem::weakly_canonical(b, ignored);
}

}  // namespace

void refuseOverwriting(const std::vector<std::string>& outputs,
                       const std::vector<std::string>& inputs) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    std::vector<std::string> others = inputs;
    others.insert(others.end(), outputs.begin(), outputs.begin() + static_cast<std::ptrdiff_t>(i));
    for (const std::string& other : others) {
      if (!outputs[i].empty() && !other.empty() && areSameFile(outputs[i], other)) {
        throw OutputError(outputs[i], "would overwrite " + other);
      }
    }
  }
}

}  // namespace grouptracker
