// Variants and arrays: types kept as given, by-reference variants, bounds,
// ReDim with and without Preserve.
#include "automation/Variant.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "TestSupport.hpp"
#include "automation/AutomationError.hpp"

using namespace TessarkAO;
using Testing::ErrorOf;

TEST(Variant, KeepsTheTypeItWasGiven) {
  const Variant array(SafeArray::Vector(VarType::Double, 0, 3));
  std::string names;
  for (const Variant& v : {Variant(std::int16_t{1}), Variant(1), Variant(1.0f), Variant(std::uint8_t{1}),
                           Variant("x"), Variant(), Variant::Nothing(), array})
    names += v.TypeName() + " ";
  EXPECT_EQ(names, "Integer Long Single Byte String Empty Nothing Double() ");
  EXPECT_TRUE(Variant::Missing().IsMissing());
  EXPECT_FALSE(Variant(ErrorCode{5}).IsMissing());
  EXPECT_TRUE(Variant::Null().IsNull());
}

TEST(Variant, ByReferenceVariantsReadAndWriteTheTarget) {
  Variant target(1.5);
  Variant ref = Variant::ByRef(target);
  Variant refToRef = Variant::ByRef(ref);  // chains collapse to the target
  EXPECT_EQ(ref.Type(), VarType::Double);
  refToRef.Assign(Variant("now text"));
  EXPECT_EQ(target.AsString(), "now text");
  EXPECT_TRUE(ref.IsByRef());
}

TEST(SafeArray, BoundsAndElementAccess) {
  SafeArray m = SafeArray::Matrix(VarType::Double, 1, 3, 0, 1);
  EXPECT_EQ(m.Dims(), 2);
  EXPECT_EQ((std::vector<std::int32_t>{m.LBound(1), m.UBound(1), m.LBound(2), m.UBound(2)}),
            (std::vector<std::int32_t>{1, 3, 0, 1}));
  m.Put(3, 1, Variant(7));
  EXPECT_EQ(m.Get(3, 1).Type(), VarType::Double);
  EXPECT_EQ(m.Get(3, 1).AsDouble(), 7.0);
  EXPECT_EQ(ErrorOf([&] { m.Get(0, 0); }), 9);
  EXPECT_EQ(ErrorOf([&] { m.Get(1, 2); }), 9);
  EXPECT_EQ(ErrorOf([&] { m.Get(1); }), 9);
  EXPECT_EQ(ErrorOf([&] { m.LBound(3); }), 9);
  // The first index varies fastest.
  EXPECT_EQ(m.Offset(std::vector<std::int32_t>{2, 0}), 1u);
  EXPECT_EQ(m.Offset(std::vector<std::int32_t>{1, 1}), 3u);
}

// Bounds are Longs: an upper bound outside the Long range is 6, an array of
// more elements than the runtime can address is 7, both before allocating.
TEST(SafeArray, BoundsStayWithinTheLongRange) {
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
  struct Row {
    std::vector<ArrayBound> bounds;
    int error;
  };
  const Row rows[] = {
      {{{kMax, 1}}, 0},     {{{kMax, 2}}, 6},         {{{kMin, 0}}, 6},          {{{kMin, 1}}, 0},
      {{{kMin + 1, 0}}, 0}, {{{0, kMax}, {0, 2}}, 7}, {{{0, (1 << 28) + 1}}, 7}, {{{1, 2}, {kMax - 1, 3}}, 6},
      {{{0, -1}}, 9},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(ErrorOf([&] { SafeArray a(VarType::Double, r.bounds); }), r.error);
    SafeArray b;
    EXPECT_EQ(ErrorOf([&] { b.Redim(r.bounds, false); }), r.error);
  }
  const SafeArray top = SafeArray::Vector(VarType::Long, kMax, kMax);
  EXPECT_EQ(top.UBound(1), kMax);
  EXPECT_EQ(SafeArray::Vector(VarType::Long, kMin, kMin).UBound(1), kMin);
  EXPECT_EQ(ErrorOf([] { SafeArray::Vector(VarType::Long, kMin, kMax); }), 6);
  EXPECT_EQ(ErrorOf([] { SafeArray::Matrix(VarType::Long, 0, 1, kMin, kMax); }), 6);
}

TEST(SafeArray, RedimPreserveChangesOnlyTheLastDimension) {
  SafeArray m = SafeArray::Matrix(VarType::Long, 1, 2, 1, 2);
  m.Put(2, 2, Variant(9));
  m.Redim({ArrayBound{1, 2}, ArrayBound{1, 5}}, true);
  EXPECT_EQ(m.Get(2, 2).AsLong(), 9);
  EXPECT_EQ(m.Get(2, 5).AsLong(), 0);
  EXPECT_EQ(ErrorOf([&] { m.Redim({ArrayBound{1, 3}, ArrayBound{1, 5}}, true); }), 9);
  EXPECT_EQ(ErrorOf([&] { m.Redim({ArrayBound{1, 2}}, true); }), 9);
  EXPECT_EQ(ErrorOf([&] { m.Redim({ArrayBound{1, 2}, ArrayBound{0, 5}}, true); }), 9);
  EXPECT_EQ(m.Get(2, 2).AsLong(), 9);  // failed attempts change nothing
  m.Redim({ArrayBound{0, 3}}, false);
  EXPECT_EQ(m.Dims(), 1);
  EXPECT_EQ(m.Get(2).AsLong(), 0);
  m.SetFixed(true);
  EXPECT_EQ(ErrorOf([&] { m.Redim({ArrayBound{0, 4}}, false); }), 10);
}

TEST(SafeArray, CopiesAreDeep) {
  Variant a(SafeArray::Vector(VarType::Variant, 0, 1));
  Variant b = a;
  b.AsArray().Put(0, Variant("x"));
  EXPECT_TRUE(a.AsArray().Get(0).IsEmpty());
  EXPECT_FALSE(SameValue(a, b));
  a = b;
  EXPECT_TRUE(SameValue(a, b));
}
