#include "tests/support/base/TempFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// The frames of a groups file without what the host alone knows.
std::vector<json> framesOf(const fs::path& file) {
  std::vector<json> frames;
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    frames.push_back(json::parse(line));
    frames.back().erase("inputFrame");
    frames.back().erase("persons");
    for (auto& group : frames.back()["groups"]) {
      group.erase("persons");
    }
  }
  return frames;
}

/// Runs the program on the example in a folder of its own.
void expectAsExpected(const fs::path& example) {
  const TempFolder folder;
  fs::copy(example, folder.path(), fs::copy_options::recursive);
  const std::string command =
      "cd '" + folder.path().string() +
      "' && '" PROGRAM
      "' run scene.jsonl --parameters parameters.txt --calibration calibration.yml "
      "--context context.json --output groups.jsonl > stdout.txt 2> stderr.txt";
  EXPECT_EQ(std::system(command.c_str()), 0) << textOf(folder.path() / "stderr.txt");
  const auto equal = [&](const char* made, const char* expected) {
    return textOf(folder.path() / made) == textOf(folder.path() / "expected" / expected);
  };
  EXPECT_TRUE(equal("stdout.txt", "stdout.txt"));
  EXPECT_TRUE(equal("metasimages.txt", "metas.txt"));
  EXPECT_EQ(framesOf(folder.path() / "groups.jsonl"),
            framesOf(folder.path() / "expected/groups.jsonl"));
}

TEST(Examples, ComeOutAsExpected) {
  if (!fs::is_directory(EXAMPLES)) {
    GTEST_SKIP() << "no examples in " << EXAMPLES;
  }
  for (const auto& example : fs::directory_iterator(EXAMPLES)) {
    if (example.is_directory()) {
      SCOPED_TRACE(example.path().filename());
      expectAsExpected(example.path());
    }
  }
}

}  // namespace
