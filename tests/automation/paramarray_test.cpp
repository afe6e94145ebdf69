// Trailing variable-length argument lists: the dispatcher packs every
// argument from the list's position on into one array of Variant.
#include <gtest/gtest.h>

#include "automation/Members.hpp"

using namespace TessarkAO;

namespace {

class Lister final : public Dispatch<Lister> {
 public:
  static constexpr std::string_view kClassName = "Lister";
  static void Describe(ClassBuilder<Lister>& b) {
    b.Method<&Lister::Describe2>("Describe", Names{"Prefix", "Items"});
  }
  // "<prefix>:<lower>..<upper>:<type names>"
  std::string Describe2(std::string prefix, const ParamArray& items) {
    std::string out = prefix + ":" + std::to_string(items.items.LBound()) + ".." +
                      std::to_string(items.items.UBound()) + ":";
    for (const Variant& v : items.items.Data()) out += v.TypeName() + ",";
    return out;
  }
};

std::string Call(std::vector<Variant> args) {
  auto o = MakeRef<Lister>();
  return o->Invoke("Describe", CallKind::Method, args).AsString();
}

}  // namespace

TEST(ParamArray, PacksTheRemainingArgumentsFromZero) {
  EXPECT_EQ(Call({Variant("a")}), "a:0..-1:");
  EXPECT_EQ(Call({Variant("a"), Variant(2), Variant(1.5), Variant("x")}), "a:0..2:Long,Double,String,");
  // A by-reference argument arrives as its value.
  Variant target(std::int16_t{4});
  EXPECT_EQ(Call({Variant("b"), Variant::ByRef(target)}), "b:0..0:Integer,");
  // An array given as the only entry stays one entry.
  EXPECT_EQ(Call({Variant("c"), Variant(SafeArray::Vector(VarType::Long, 1, 3))}), "c:0..0:Long(),");
}

TEST(ParamArray, FixedParametersAreStillChecked) {
  try {
    Call({});
    FAIL() << "no error";
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.Number(), Err::ArgumentNotOptional);
  }
  const ClassInfo& info = Lister::StaticClass();
  EXPECT_TRUE(info.Members()[0].get.params[1].paramArray);
  EXPECT_FALSE(info.Members()[0].get.params[0].paramArray);
}
