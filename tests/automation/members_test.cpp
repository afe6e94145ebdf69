// What the call-behaviour rows cannot express: the table's lookup and
// descriptions, object arguments, and a member filling the caller's variant.
#include <gtest/gtest.h>

#include "automation/Members.hpp"
#include "calls/CallProbe.hpp"
#include "TestSupport.hpp"

using namespace TessarkAO;
using Testing::CallProbe;
using Testing::ErrorOf;

TEST(Members, LookupIsCaseInsensitiveAndTheTableDescribesEachParameter) {
  const ClassInfo& info = CallProbe::StaticClass();
  EXPECT_EQ(info.Find("x"), 1);
  EXPECT_EQ(info.Find("GETPAIR"), 6);
  EXPECT_EQ(info.Find("nothing"), DispIdUnknown);
  EXPECT_EQ(info.Member(DispIdValue)->name, "Item");
  const Accessor& pair = info.Members()[5].get;
  EXPECT_EQ(pair.params[1].name, "b");
  EXPECT_TRUE(pair.params[0].output && pair.params[1].output);
  const Accessor& list = info.Members()[4].get;
  EXPECT_TRUE(list.paramArray && list.params[1].paramArray && !list.params[0].paramArray);
  EXPECT_EQ(info.Members()[2].get.required, 1);
}

TEST(Members, ObjectPropertiesTakeSetAndLetOfAnObject) {
  auto s = MakeRef<CallProbe>();
  auto child = MakeRef<CallProbe>();
  std::vector<Variant> set = {Variant(child)}, nothing = {Variant::Nothing()}, number = {Variant(1.0)};
  s->Invoke("Child", CallKind::Set, set);
  EXPECT_EQ(s->Invoke("Child", CallKind::Get, {}).AsObject().get(), child.get());
  s->Invoke("Child", CallKind::Let, nothing);
  EXPECT_TRUE(s->Invoke("Child", CallKind::Get, {}).IsNothing());
  EXPECT_EQ(ErrorOf([&] { s->Invoke("Child", CallKind::Set, number); }), 424);
}

TEST(Members, AVariantParameterFillsTheCallersOwnVariable) {
  auto s = MakeRef<CallProbe>();
  Variant target;
  std::vector<Variant> args = {Variant::ByRef(target)};
  s->Invoke("Fill", CallKind::Method, args);
  ASSERT_TRUE(target.IsArray());
  EXPECT_EQ(target.AsArray().UBound(1), 3);
  EXPECT_EQ(target.AsArray().Get(3).AsDouble(), 1.5);
}
