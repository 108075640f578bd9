#include "host/base/Database.h"
#include "host/base/LineReader.h"
#include "host/base/OutputFile.h"
#include "host/base/OutputPlace.h"
#include "host/base/TextNumbers.h"
#include "tests/support/base/Texts.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sstream>
#include <sys/resource.h>
#include <vector>

namespace grouptracker {

namespace {

std::vector<std::string> linesRead(const std::string& text) {
  std::istringstream in(text);
  LineReader lines(in, "text");
  std::vector<std::string> result;
  while (lines.next()) {
    result.push_back(lines.line());
  }
  return result;
}

TEST(InputError, KeepsApartWhatItsTextJoins) {
  std::istringstream in("one\ntwo\n");
  LineReader lines(in, "C:/a: b.txt");
  lines.next();
  lines.next();
  const InputError error = lines.error("wrong: 3");
  EXPECT_STREQ(error.what(), "C:/a: b.txt:2: wrong: 3");
  EXPECT_EQ(error.place().file, "C:/a: b.txt");
  EXPECT_EQ(error.place().line, 2U);
  EXPECT_EQ(error.problem(), "wrong: 3");
  EXPECT_FALSE(InputError("a.txt", "cannot be opened").place().line);
}

TEST(LineReader, TakesEveryKindOfLineEndAndDropsTheByteOrderMark) {
  EXPECT_EQ(linesRead("\xEF\xBB\xBF"
                      "a\r\n\nb\r\nc"),
            (std::vector<std::string>{"a", "", "b", "c"}));
  EXPECT_EQ(linesRead("a\n"), (std::vector<std::string>{"a"}));
  EXPECT_EQ(linesRead(""), std::vector<std::string>());
}

// Lengths around the size of the chunks in which a line is read.
TEST(LineReader, KeepsLongLinesWhole) {
  for (std::size_t length = 16382; length <= 16386; ++length) {
    const std::string line(length, 'x');
    EXPECT_EQ(linesRead(line + "\n" + line), (std::vector<std::string>{line, line})) << length;
  }
}

TEST(LineReader, RefusesLinesThatWouldFillTheMemory) {
  std::istringstream in("short\n" + std::string(100000, 'x') + "\n");
  LineReader lines(in, "scene.jsonl", 50000);
  EXPECT_TRUE(lines.next());
  EXPECT_EQ(errorOf([&] { lines.next(); }), "scene.jsonl:2: the line is longer than 50000 bytes");
}

TEST(TextNumbers, ReadsWhatNumericToolsWriteAndNothingElse) {
  std::vector<double> numbers;
  parseNumbers("  7.80e+02\t+1 -0.5  .25\r", numbers);
  EXPECT_EQ(numbers, (std::vector<double>{780.0, 1.0, -0.5, 0.25}));
  for (const char* const wrong : {"1 x", "1,5", "nan", "inf", "1e999", "+-1", "0x10", "1.5.2"}) {
    EXPECT_NE(errorOf([&] { parseNumbers(wrong, numbers); }), "no error") << wrong;
  }
}

TEST(OutputFile, HoldsWholeLinesOnlyWhenTheDiskIsFull) {
  EXPECT_EQ(errorOf([] { OutputFile("/dev/full").writeLines("{}\n"); }),
            "/dev/full: cannot be written: No space left on device");
  EXPECT_EQ(errorOf([] { OutputFile("/no/such/folder/x"); }),
            "/no/such/folder/x: cannot be written: No such file or directory");
}

/// Files of this process cannot grow beyond some bytes for the length of a scope.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit{bytes, m_before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit m_before = {};
  void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

TEST(OutputFile, TakesBackALineThatIsCutByTheLimit) {
  const TempFolder folder;
  const std::string path = folder.path() / "lines.txt";
  const std::string line = std::string(59, 'x') + "\n";
  {
    const FileSizeLimit limit(100);
    OutputFile file(path);
    file.writeLines(line);
    EXPECT_EQ(errorOf([&] { file.writeLines(line); }),
              path + ": cannot be written: File too large");
  }
  EXPECT_EQ(textOf(path), line);
}

TEST(Database, TellsTextsApartThatHoldZeros) {
  const auto database = Database::inMemory();
  database->execute("CREATE TABLE persons (person UNIQUE)");
  const std::vector<std::string> names{{'a', '\0', 'b'}, {'a', '\0', 'c'}};
  Statement insertion(*database, "INSERT INTO persons VALUES (?)");
  for (const std::string& name : names) {
    insertion.row(std::variant<std::int64_t, std::string>(name));
  }
  Statement query(*database, "SELECT person FROM persons ORDER BY person");
  query.start();
  for (const std::string& name : names) {
    ASSERT_TRUE(query.next());
    const auto bytes = query.bytes(0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()), name);
  }
}

TEST(FileIdentity, RecognisesAnInputUnderAnotherName) {
  const TempFolder folder;
  const auto in = [&](const char* name) { return (folder.path() / name).string(); };
  const std::string input = folder.write("scene.jsonl", "");
  std::filesystem::create_symlink(input, in("link"));
  const auto refusal = [&](const std::vector<std::string>& outputs) {
    return errorOf([&] { refuseOverwriting(outputs, {input, ""}); });
  };
  EXPECT_EQ(refusal({in("link")}), in("link") + ": would overwrite " + input);
  EXPECT_EQ(refusal({in("new"), in("x/../new")}),
            in("x/../new") + ": would overwrite " + in("new"));
  EXPECT_EQ(refusal({in("groups.jsonl"), "", "/dev/null", "/dev/null"}), "no error");
}

}  // namespace

}  // namespace grouptracker
