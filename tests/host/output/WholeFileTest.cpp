#include "host/output/WholeFile.h"
#include "tests/support/base/Texts.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

namespace grouptracker {

namespace {

std::ptrdiff_t filesIn(const TempFolder& folder) {
  return std::distance(std::filesystem::directory_iterator(folder.path()), {});
}

TEST(WholeFile, LeavesTheOlderOneUntilTheNewOneIsComplete) {
  const TempFolder folder;
  const std::string path = folder.write("tree.dot", "old");
  const std::string neighbour = folder.write("tree.dot.part", "somebody else's");
  {
    WholeFile given(path);
    EXPECT_EQ(textOf(path), "old");
    given.write("new\n");
    EXPECT_EQ(textOf(path), "new\n");
    given.write("newer\n");
    EXPECT_EQ(errorOf([&] { WholeFile second(path); }), path + ": is being written by another run");
  }
  const WholeFile givenUp(path);
  { const WholeFile neverWritten(folder.path() / "other.dot"); }
  EXPECT_EQ(textOf(path), "newer\n");
  EXPECT_EQ(textOf(neighbour), "somebody else's");
  EXPECT_EQ(filesIn(folder), 3) << "the third is what the one given up is written to";
}

TEST(WholeFile, SaysAtOnceThatAPlaceCannotBeWritten) {
  const TempFolder folder;
  const auto error = [](const std::string& path) { return errorOf([&] { WholeFile file(path); }); };
  const std::string missing = folder.path() / "missing" / "tree.dot";
  EXPECT_EQ(error(missing), missing + ": cannot be written: No such file or directory");
  EXPECT_EQ(error(folder.path()), folder.path().string() + ": cannot be written: Is a directory");
  EXPECT_EQ(errorOf([] { WholeFile("/dev/full").write("text\n"); }),
            "/dev/full: cannot be written: No space left on device");
}

}  // namespace

}  // namespace grouptracker
