// Variants and arrays: types kept as given, by-reference variants, bounds,
// ReDim with and without Preserve.
#include <gtest/gtest.h>

#include <functional>

#include "automation/AutomationError.hpp"
#include "automation/Variant.hpp"
#include "TestSupport.hpp"

using namespace TessarkAO;

namespace {
using Testing::ErrorOf;
}  // namespace

TEST(Variant, KeepsTheTypeItWasGiven) {
  EXPECT_EQ(Variant(std::int16_t{1}).Type(), VarType::Integer);
  EXPECT_EQ(Variant(1).Type(), VarType::Long);
  EXPECT_EQ(Variant(1.0f).Type(), VarType::Single);
  EXPECT_EQ(Variant(std::uint8_t{1}).Type(), VarType::Byte);
  EXPECT_EQ(Variant("x").Type(), VarType::String);
  EXPECT_EQ(Variant().TypeName(), "Empty");
  EXPECT_EQ(Variant::Nothing().TypeName(), "Nothing");
  EXPECT_EQ(Variant(SafeArray::Vector(VarType::Double, 0, 3)).TypeName(), "Double()");
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
  EXPECT_EQ(m.LBound(1), 1);
  EXPECT_EQ(m.UBound(1), 3);
  EXPECT_EQ(m.LBound(2), 0);
  EXPECT_EQ(m.UBound(2), 1);
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
