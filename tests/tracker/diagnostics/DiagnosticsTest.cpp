#include "tests/support/base/Texts.h"
#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/diagnostics/GatheredText.h"
#include "tracker/diagnostics/TextBuffer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(Diagnostics, GathersUntilItIsFlushed) {
  testing::internal::CaptureStdout();
  Diagnostics::print("group {}, ", 7);
  Diagnostics::write("at ", 1.5, " of ", -2, "\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

  testing::internal::CaptureStdout();
  Diagnostics::flush();
  Diagnostics::flush();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "group 7, at 1.500000 of -2\n");
}

TEST(Diagnostics, OnlyWhatIsAlwaysPrintedComesOutWhenOff) {
  testing::internal::CaptureStdout();
  Diagnostics::setEnabled(false);
  Diagnostics::print("a line\n");
  Diagnostics::write("another\n");
  Diagnostics::printAlways("{}\n", "what must be known");
  Diagnostics::setEnabled(true);
  Diagnostics::flush();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "what must be known\n");
}

TEST(TextBuffer, AddsShortTextsWholeAndLongOnesNotAtAll) {
  TextBuffer::Short<4> word;
  TextBuffer buffer;
  EXPECT_TRUE(word.set("abcd"));
  buffer.write(word, "-");
  EXPECT_FALSE(word.set("abcde"));
  buffer.write(word, TextBuffer::General{0.25}, "-");
  EXPECT_TRUE(word.set(""));
  buffer.write(word, 3);
  EXPECT_EQ(buffer.text(), "abcd-0.25-3");
}

TEST(GatheredText, AppendsAllPiecesHoweverMany) {
  const TempFolder folder;
  const std::string file = folder.write("dump.txt", "before\n");
  std::vector<std::string> pieces;
  std::string all = "before\n";
  for (int i = 0; i < 3000; ++i) {
    pieces.push_back(i % 5 == 0 ? "" : std::to_string(i) + '\n');
    all += pieces.back();
  }
  GatheredText text;
  for (const auto& piece : pieces) {
    text.add(piece);
  }
  text.appendTo(file);
  EXPECT_EQ(textOf(file), all);
  text.clear();
  text.add("end\n");
  text.appendTo(file);
  EXPECT_EQ(textOf(file), all + "end\n");
  text.appendTo((folder.path() / "missing" / "dump.txt").string());  // lost without a word
}

}  // namespace
