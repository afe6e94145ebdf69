// The member-table dispatcher: lookup, kinds, argument checks, conversions,
// optional arguments and by-reference write-back, exercised through a small
// class declared the way every library class is.
#include <gtest/gtest.h>

#include "automation/Members.hpp"
#include "TestSupport.hpp"

using namespace TessarkAO;

namespace {

class Sample final : public Dispatch<Sample> {
 public:
  static constexpr std::string_view kClassName = "Sample";
  static void Describe(ClassBuilder<Sample>& b) {
    b.Property<&Sample::GetX, &Sample::LetX>("X")
        .Method<&Sample::GetPair>("GetPair", Names{"A", "B"})
        .Method<&Sample::Scaled>("Scaled", Opt{2.0})
        .Get<&Sample::Value>("Value")
        .Let<&Sample::LetValue>("Value")
        .PropertyRef<&Sample::GetChild, &Sample::SetChild>("Child")
        .Method<&Sample::Fill>("Fill")
        .Method<&Sample::Optional>("Optional", Opt{Variant::Missing()})
        .Get<&Sample::Name>("Name")
        .Default();
  }
  double GetX() const { return x_; }
  void LetX(double v) { x_ = v; }
  void GetPair(double& a, std::int32_t& b) const {
    a = x_;
    b = 7;
  }
  double Scaled(double factor) const { return x_ * factor; }
  double Value(std::int32_t i) const {
    if (i < 0 || i > 3) Raise(Err::SubscriptOutOfRange);
    return v_[static_cast<std::size_t>(i)];
  }
  void LetValue(std::int32_t i, double v) {
    if (i < 0 || i > 3) Raise(Err::SubscriptOutOfRange);
    v_[static_cast<std::size_t>(i)] = v;
  }
  Ref<Object> GetChild() const { return child_; }
  void SetChild(Ref<Object> c) { child_ = std::move(c); }
  void Fill(Variant& a) { a = Variant(SafeArray::Vector(VarType::Double, 0, 2)); }
  bool Optional(const Variant& v) const { return v.IsMissing(); }
  std::string Name() const { return "sample"; }

 private:
  double x_ = 1.5;
  double v_[4] = {};
  Ref<Object> child_;
};

Variant Call(Object& o, std::string_view name, CallKind kind, std::vector<Variant> args = {}) {
  return o.Invoke(name, kind, args);
}

using Testing::ErrorOf;

}  // namespace

TEST(Members, LookupIsCaseInsensitiveAndIdsFollowSlots) {
  const ClassInfo& info = Sample::StaticClass();
  EXPECT_EQ(info.Find("x"), 1);
  EXPECT_EQ(info.Find("GETPAIR"), 2);
  EXPECT_EQ(info.Find("value"), 4);
  EXPECT_EQ(info.Find("nothing"), DispIdUnknown);
  EXPECT_EQ(info.Member(DispIdValue)->name, "Name");
  EXPECT_EQ(info.Members()[1].get.params[0].name, "A");
  EXPECT_TRUE(info.Members()[1].get.params[0].output);
}

TEST(Members, PropertiesMethodsAndConversions) {
  auto s = MakeRef<Sample>();
  EXPECT_EQ(Call(*s, "x", CallKind::Get).AsDouble(), 1.5);
  Call(*s, "X", CallKind::Let, {Variant("2.5")});  // text converts to Double
  EXPECT_EQ(Call(*s, "X", CallKind::Method).AsDouble(), 2.5);
  EXPECT_EQ(Call(*s, "Scaled", CallKind::Method).AsDouble(), 5.0);
  EXPECT_EQ(Call(*s, "Scaled", CallKind::Method, {Variant(std::int16_t{3})}).AsDouble(), 7.5);
  EXPECT_EQ(Call(*s, "Scaled", CallKind::Method, {Variant::Missing()}).AsDouble(), 5.0);
  Call(*s, "Value", CallKind::Let, {Variant(2), Variant(9.0)});
  EXPECT_EQ(Call(*s, "Value", CallKind::Get, {Variant(2)}).AsDouble(), 9.0);
  EXPECT_TRUE(Call(*s, "Optional", CallKind::Method).AsBoolean());
  EXPECT_FALSE(Call(*s, "Optional", CallKind::Method, {Variant(1)}).AsBoolean());
}

TEST(Members, ByReferenceOutputsAreWrittenBack) {
  auto s = MakeRef<Sample>();
  std::vector<Variant> args = {Variant(), Variant()};
  s->Invoke("GetPair", CallKind::Method, args);
  EXPECT_EQ(args[0].Type(), VarType::Double);
  EXPECT_EQ(args[0].AsDouble(), 1.5);
  EXPECT_EQ(args[1].AsLong(), 7);
  // Through a by-reference variant the caller's own variant receives it.
  Variant target;
  std::vector<Variant> refArgs = {Variant::ByRef(target)};
  s->Invoke("Fill", CallKind::Method, refArgs);
  ASSERT_TRUE(target.IsArray());
  EXPECT_EQ(target.AsArray().UBound(1), 2);
}

TEST(Members, ObjectPropertiesTakeSetAndLetOfAnObject) {
  auto s = MakeRef<Sample>();
  auto child = MakeRef<Sample>();
  Call(*s, "Child", CallKind::Set, {Variant(child)});
  EXPECT_EQ(Call(*s, "Child", CallKind::Get).AsObject().get(), child.get());
  Call(*s, "Child", CallKind::Let, {Variant::Nothing()});
  EXPECT_TRUE(Call(*s, "Child", CallKind::Get).IsNothing());
}

TEST(Members, ErrorsCarryClassicNumbers) {
  auto s = MakeRef<Sample>();
  EXPECT_EQ(ErrorOf([&] { Call(*s, "Nope", CallKind::Method); }), 438);
  EXPECT_EQ(ErrorOf([&] { Call(*s, "Value", CallKind::Get); }), 449);
  EXPECT_EQ(ErrorOf([&] { Call(*s, "Value", CallKind::Get, {Variant::Missing()}); }), 449);
  EXPECT_EQ(ErrorOf([&] { Call(*s, "X", CallKind::Get, {Variant(1), Variant(2)}); }), 450);  // a Double has no default member
  EXPECT_EQ(ErrorOf([&] { Call(*s, "Scaled", CallKind::Method, {Variant(1.0), Variant(2.0)}); }), 450);
  EXPECT_EQ(ErrorOf([&] { Call(*s, "Scaled", CallKind::Method, {Variant("abc")}); }), 13);
  EXPECT_EQ(ErrorOf([&] { Call(*s, "Value", CallKind::Get, {Variant(4)}); }), 9);
  EXPECT_EQ(ErrorOf([&] { Call(*s, "Name", CallKind::Let, {Variant("x")}); }), 438);
  EXPECT_EQ(ErrorOf([&] { Call(*s, "Child", CallKind::Set, {Variant(1.0)}); }), 424);
  AutomationError e(9);
  EXPECT_EQ(e.HResult(), 0x800A0009u);
  EXPECT_EQ(e.Description(), "Subscript out of range");
}
