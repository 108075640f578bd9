#include "host/base/PersonNames.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace grouptracker {

namespace {

constexpr std::int64_t firstAlias = PersonNames::firstAlias;

TEST(PersonNames, GivesEveryNameANumberOfItsOwnAndItselfBack) {
  PersonNames names;
  EXPECT_EQ(names.numberOf(std::int64_t{5}), 5U);
  EXPECT_EQ(names.numberOf(firstAlias - 1), firstAlias - 1);
  EXPECT_EQ(names.numberOf(firstAlias + 1), firstAlias + 1) << "as long as nobody has it";
  constexpr std::int64_t largest = std::numeric_limits<std::uint32_t>::max();
  EXPECT_EQ(names.numberOf(largest), largest) << "as in tables, which know numbers only";
  EXPECT_EQ(names.numberOf("5"), firstAlias);
  EXPECT_EQ(names.numberOf("a"), firstAlias + 2);
  const std::uint32_t displaced = names.numberOf(firstAlias);
  EXPECT_EQ(displaced, firstAlias + 3);
  EXPECT_EQ(names.nameOf(5), PersonName(std::int64_t{5}));
  EXPECT_EQ(names.nameOf(names.numberOf("5")), PersonName("5"));
  EXPECT_EQ(names.nameOf(displaced), PersonName(firstAlias));
  for (const std::int64_t name : {std::int64_t{-1}, std::int64_t{1} << 40}) {
    EXPECT_EQ(names.nameOf(names.numberOf(name)), PersonName(name));
  }
}

TEST(PersonNames, QuotesFieldsWhereTheyWouldBeSeveralOrNone) {
  PersonNames names;
  const auto field = [&names](const std::string& name) {
    return names.fieldOf(names.numberOf(name));
  };
  EXPECT_EQ(field("a b"), "a b");
  EXPECT_EQ(field("a,\"b\""), R"("a,""b""")");
  EXPECT_EQ(field("a\nb"), "\"a\nb\"");
  EXPECT_EQ(field(""), "\"\"");
}

TEST(PersonNames, AreThoseOfTheInnermostStead) {
  PersonNames outer;
  PersonNames inner;
  PersonNames& program = PersonNames::ofProgram();
  {
    const PersonNames::Stead first(outer);
    {
      const PersonNames::Stead second(inner);
      EXPECT_EQ(&PersonNames::ofProgram(), &inner);
    }
    EXPECT_EQ(&PersonNames::ofProgram(), &outer);
  }
  EXPECT_EQ(&PersonNames::ofProgram(), &program);
}

TEST(PersonNames, ForgetsWhomNobodyNamedForLong) {
  PersonNames names;
  names.remember(10);
  const std::uint32_t kept = names.numberOf("kept");
  const std::uint32_t gone = names.numberOf("gone");
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(names.numberOf("kept"), kept);
    names.numberOf("passing " + std::to_string(i));
  }
  EXPECT_EQ(names.textOf(kept), "kept");
  EXPECT_EQ(names.textOf(gone), std::to_string(gone));
  EXPECT_EQ(names.numberOf(std::int64_t{PersonNames::firstAlias} + 7), PersonNames::firstAlias + 7);
}

}  // namespace

}  // namespace grouptracker
