#include "host/publish/Spool.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace grouptracker {

namespace {

using testing::HasSubstr;

constexpr std::size_t roomy = 1'000'000;  // bytes

Outgoing groups(int number) {
  return {Channel::groups, "{\"line\": " + std::to_string(number) + "}"};
}

/// All that a spool holds, oldest first.
std::string held(Spool& spool) {
  std::string all;
  std::int64_t last = 0;
  for (auto next = spool.nextAfter(0); next; next = spool.nextAfter(last)) {
    all += next->payload + (next->channel == Channel::events ? "!" : "");
    last = next->id;
  }
  return all;
}

TEST(Spool, CountsEachChannelAndForgetsWhatSomebodyHas) {
  Spool spool("", roomy);
  spool.append({groups(1), {Channel::events, "{\"event\": 1}"}});
  spool.append({groups(2)});
  EXPECT_EQ(held(spool),
            "{\"sequence\": 1, \"line\": 1}{\"sequence\": 1, \"event\": 1}!"
            "{\"sequence\": 2, \"line\": 2}");
  spool.remove(spool.nextAfter(0)->id);
  spool.remove(12345);
  EXPECT_EQ(held(spool), "{\"sequence\": 1, \"event\": 1}!{\"sequence\": 2, \"line\": 2}");
  EXPECT_EQ(spool.messages(), 2U);
  EXPECT_EQ(spool.bytes(), held(spool).size() - 1);
}

TEST(Spool, DropsTheOldestOfMoreThanItsCapacity) {
  Spool spool("", 60);
  for (int i = 1; i <= 4; ++i) {
    spool.append({groups(i)});
  }
  EXPECT_EQ(held(spool), "{\"sequence\": 3, \"line\": 3}{\"sequence\": 4, \"line\": 4}");
  EXPECT_EQ(spool.dropped(), 2U);
  spool.append({{Channel::groups, "{\"line\": \"" + std::string(100, 'x') + "\"}"}});
  EXPECT_EQ(spool.messages(), 1U) << "the latest is kept, however long";
}

TEST(Spool, OutlivesTheProgramInAFile) {
  const TempFolder folder;
  const std::string file = folder.path() / "groups.spool";
  {
    Spool spool(file, roomy);
    spool.append({groups(1)});
    spool.append({groups(2)});
    spool.remove(1);
    EXPECT_THAT(errorOf([&] { Spool(file, roomy); }), HasSubstr("by another run"));
  }
  {
    Spool spool(file, roomy);
    EXPECT_EQ(held(spool), "{\"sequence\": 2, \"line\": 2}");
    EXPECT_EQ(spool.bytes(), held(spool).size());
    spool.remove(2);
  }
  Spool spool(file, roomy);
  spool.append({groups(3)});
  EXPECT_EQ(held(spool), "{\"sequence\": 3, \"line\": 3}") << "counters go on in an empty spool";
}

TEST(Spool, LeavesOtherDatabasesAndFilesAlone) {
  const TempFolder folder;
  const std::string other = folder.path() / "other.sqlite";
  Database(other).execute("CREATE TABLE precious(id)");
  EXPECT_EQ(errorOf([&] { Spool(other, roomy); }), other + ": is a database, but no spool");
  const std::string text = folder.write("text", std::string(5000, 'x'));
  EXPECT_THAT(errorOf([&] { Spool(text, roomy); }), HasSubstr("not a database"));
  EXPECT_EQ(textOf(text), std::string(5000, 'x'));
  EXPECT_THAT(errorOf([&] { Spool(folder.path(), roomy); }), HasSubstr("is no regular file"));
}

}  // namespace

}  // namespace grouptracker
