#include "host/output/WholeFile.h"
#include "tests/support/base/Texts.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <sys/resource.h>

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
  EXPECT_EQ(filesIn(folder), 2);
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

TEST(WholeFile, OfWhichAPartOnlyCanBeWrittenIsNotPutInPlace) {
  const TempFolder folder;
  const std::string path = folder.write("page.html", "old");
  struct rlimit before = {};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const struct rlimit small = {5000, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &small);
  for (const std::size_t size : {9'000, 900'000}) {
    EXPECT_EQ(errorOf([&] { WholeFile(path).write(std::string(size, 'x')); }),
              path + ": cannot be written: File too large");
    EXPECT_TRUE(textOf(path) == "old");
  }
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(filesIn(folder), 1);
}

}  // namespace

}  // namespace grouptracker
