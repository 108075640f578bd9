#include "host/publish/Spool.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <sys/resource.h>

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

TEST(Spool, StaysAsItWasWhenTheDiskIsFull) {
  const TempFolder folder;
  const std::string file = folder.path() / "groups.spool";
  const Outgoing large{Channel::groups, "{\"line\": \"" + std::string(100'000, 'x') + "\"}"};
  {
    Spool spool(file, roomy);
    spool.append({groups(1)});
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{200'000, RLIM_INFINITY};
    ::setrlimit(RLIMIT_FSIZE, &little);
    EXPECT_THAT(errorOf([&] {
                  spool.append({large, large, large});
                }),
                HasSubstr("cannot be written"));
    const rlimit enough{RLIM_INFINITY, RLIM_INFINITY};
    ::setrlimit(RLIMIT_FSIZE, &enough);
    EXPECT_EQ(held(spool), "{\"sequence\": 1, \"line\": 1}");
    EXPECT_EQ(spool.messages(), 1U);
    spool.append({groups(2)});
  }
  Spool spool(file, roomy);
  EXPECT_EQ(held(spool), "{\"sequence\": 1, \"line\": 1}{\"sequence\": 2, \"line\": 2}");
  EXPECT_EQ(spool.bytes(), held(spool).size());
}

TEST(Spool, KeepsItsLogSmallByBeingSettled) {
  const TempFolder folder;
  const std::string file = folder.path() / "groups.spool";
  Spool spool(file, 10 * roomy);
  const Outgoing large{Channel::groups, "{\"line\": \"" + std::string(4 * roomy, 'x') + "\"}"};
  int rounds = 0;
  for (; rounds < 20 && !spool.isUnsettled(); ++rounds) {
    spool.append({large});
    spool.remove(spool.nextAfter(0)->id);
  }
  EXPECT_GE(rounds, 3) << "not for each message";
  EXPECT_LT(rounds, 20);
  spool.settle();
  spool.append({groups(1)});
  EXPECT_FALSE(spool.isUnsettled());
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
