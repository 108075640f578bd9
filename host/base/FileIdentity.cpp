#include "host/base/FileIdentity.h"

#include "host/base/OutputError.h"

#include <cstddef>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace grouptracker {

namespace {

const std::string standardInput = "-";
const std::string standardOutput = "standard output";

bool statusOf(const std::string& name, struct stat& status) {
  if (name == standardInput) {
    return ::fstat(STDIN_FILENO, &status) == 0;
  }
  return name == standardOutput ? ::fstat(STDOUT_FILENO, &status) == 0
                                : ::stat(name.c_str(), &status) == 0;
}

bool areSameFile(const std::string& a, const std::string& b) {
  struct stat ofA = {};
  struct stat ofB = {};
  if (statusOf(a, ofA) && statusOf(b, ofB)) {
    return (S_ISREG(ofA.st_mode) || S_ISDIR(ofA.st_mode)) && ofA.st_dev == ofB.st_dev &&
           ofA.st_ino == ofB.st_ino;
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
    if (!outputs[i].starts_with("/dev/")) {  // as /dev/stdout, which is meant to be the same
      others.push_back(standardOutput);
    }
    others.insert(others.end(), outputs.begin(), outputs.begin() + static_cast<std::ptrdiff_t>(i));
    for (const std::string& other : others) {
      if (!outputs[i].empty() && !other.empty() && areSameFile(outputs[i], other)) {
        throw OutputError(outputs[i],
                          "would overwrite " + (other == standardInput ? "standard input" : other));
      }
    }
  }
}

}  // namespace grouptracker
