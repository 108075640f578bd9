#include "tests/support/base/Texts.h"
#include "tests/support/host/GroupsSchema.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// The folders of runs below a folder, by name; none when it is not there.
std::vector<fs::path> runsIn(const fs::path& folder) {
  std::vector<fs::path> runs;
  if (fs::is_directory(folder)) {
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.is_directory()) {
        runs.push_back(entry.path());
      }
    }
  }
  std::sort(runs.begin(), runs.end());
  return runs;
}

/// The frames of an actors file without what the host alone knows.
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

/// Where two texts part, for a message that is short enough to read.
std::string firstDifference(const std::string& made, const std::string& expected) {
  const auto [a, b] = std::mismatch(made.begin(), made.end(), expected.begin(), expected.end());
  const auto line = std::count(made.begin(), a, '\n') + 1;
  const auto excerpt = [](auto from, auto end) {
    return std::string(from, from + std::min<std::ptrdiff_t>(end - from, 60));
  };
  return "line " + std::to_string(line) + ": \"" + excerpt(a, made.end()) + "\" instead of \"" +
         excerpt(b, expected.end()) + "\"";
}

class GoldenRun {
 public:
  /// Runs the program in a folder of its own.
  explicit GoldenRun(const fs::path& run) {
    fs::copy(run, m_folder.path(), fs::copy_options::recursive);
    const std::string command =
        "cd '" + m_folder.path().string() +
        "' && '" PROGRAM
        "' run scene.jsonl --parameters parameters.txt --calibration calibration.yml "
        "--context context.json --actors actors.jsonl --output groups.jsonl --mobile-dump "
        "metas.txt "
        "> stdout.txt "
        "2> stderr.txt";
    EXPECT_EQ(std::system(command.c_str()), 0) << textOf(made("stderr.txt"));
  }

  fs::path made(const std::string& file) const { return m_folder.path() / file; }
  fs::path expected(const std::string& file) const { return m_folder.path() / "expected" / file; }

  /// One line for each frame of the scene, as the documents describe it.
  void expectGroupsOfEveryFrame() const {
    const std::string groups = textOf(made("groups.jsonl"));
    EXPECT_EQ(grouptracker::groupsFault(groups), "");
    EXPECT_EQ(linesOf(groups).size(), linesOf(textOf(made("actors.jsonl"))).size());
  }

  void expectSameText(const std::string& file) const {
    const std::string text = textOf(made(file));
    const std::string wanted = textOf(expected(file));
    EXPECT_TRUE(text == wanted) << file << ", " << firstDifference(text, wanted);
  }

 private:
  TempFolder m_folder;
};

TEST(GoldenRuns, ComeOutToTheLastByte) {
  const auto runs = runsIn(RUNS);
  EXPECT_EQ(runs.size(), 10U);
  for (const fs::path& run : runs) {
    SCOPED_TRACE(run.filename());
    const GoldenRun golden(run);
    golden.expectSameText("stdout.txt");
    golden.expectSameText("metas.txt");
    golden.expectSameText("actors.jsonl");
    golden.expectGroupsOfEveryFrame();
  }
}

// Another model of the process made these; it knows nothing of the host's own keys.
TEST(WorkedExamples, ComeOutAsExpected) {
  const auto runs = runsIn(EXAMPLES);
  if (runs.empty()) {
    GTEST_SKIP() << "no examples in " << EXAMPLES;
  }
  for (const fs::path& run : runs) {
    SCOPED_TRACE(run.filename());
    const GoldenRun golden(run);
    golden.expectSameText("stdout.txt");
    golden.expectSameText("metas.txt");
    EXPECT_EQ(framesOf(golden.made("actors.jsonl")), framesOf(golden.expected("groups.jsonl")));
    golden.expectGroupsOfEveryFrame();
  }
}

}  // namespace
