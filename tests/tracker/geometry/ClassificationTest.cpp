#include "tracker/geometry/ContextReader.h"
#include "tracker/geometry/ObjectType.h"

#include <gtest/gtest.h>

#include <array>
#include <list>
#include <string>
#include <string_view>

namespace {

struct TypeText {
  std::string text;
  std::string_view name;
  bool isPerson;
  bool isGroup;
  bool isNotPerson;
};

TEST(ObjectType, IsClassifiedByHowTheTextBegins) {
  const std::list<TypeText> rows = {
      {"PERSON", "PERSON", true, false, false},
      {"PERSON_3", "PERSON", true, false, false},
      {"GROUP_OF_PERSONS", "GROUP_OF_PERSONS", false, true, false},
      {"GROUP", "UNKNOWN", false, false, true},
      {"NOISE", "NOISE", false, false, true},
      {"CROWD", "UNKNOWN", false, false, true},
      {"A_PERSON", "UNKNOWN", false, false, true},
      {"person", "UNKNOWN", false, false, true},
  };
  for (const TypeText& row : rows) {
    SCOPED_TRACE(row.text);
    const ObjectType type(row.text);
    EXPECT_EQ(type.nameOf(), row.name);
    EXPECT_EQ(type.isPerson(), row.isPerson);
    EXPECT_EQ(type.isGroup(), row.isGroup);
    EXPECT_EQ(type.isNotPerson(), row.isNotPerson);
    EXPECT_EQ(type.isNoise(), row.name == "NOISE");
    EXPECT_FALSE(type.isCrowd());
  }
}

using Bounds = std::array<float, 4>;  // smallest and largest x, smallest and largest y

Bounds boundsOf(const QSharedPointer<kelDataContext>& context) {
  Bounds bounds = {1, 2, 3, 4};
  ContextReader::read(bounds[0], bounds[1], bounds[2], bounds[3], context);
  return bounds;
}

TEST(ContextReader, BoundsAllZonesAndNothingElse) {
  const std::list<ContextElement> others = {{"zone", "circle", {{70, 70, 0}}},
                                            {"wall", "polygon", {{80, 80, 0}}}};
  std::list<ContextElement> all = others;
  all.push_back({"zone", "rectangle", {{0, 0, 0}, {10, 5, 0}}});
  all.push_back({"zone", "polygon", {{-1, 2, 99}}});
  EXPECT_EQ(boundsOf(QSharedPointer<kelDataContext>::create(all)), (Bounds{-1, 10, 0, 5}));

  const Bounds none = {2147483648.0F, -2147483648.0F, 2147483648.0F, -2147483648.0F};
  EXPECT_EQ(boundsOf(QSharedPointer<kelDataContext>::create(others)), none);
  EXPECT_EQ(boundsOf({}), none);
}

}  // namespace
