// The builders' member tables: dispatch ids are slot order and are fixed by
// the type library and by callers compiled against it, so every member must
// keep its slot, name, call kinds, parameter names and types.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"

using namespace TessarkAO;

namespace {

std::string Describe(const char* kind, const Accessor& a) {
  if (!a) return "";
  std::string s = std::string(" ") + kind + "(";
  for (std::size_t i = 0; i < a.params.size(); ++i) {
    const ParamInfo& p = a.params[i];
    if (i) s += ",";
    s += p.name + ":" + std::string(TypeName(p.type)) + (p.output ? "&" : "") + (p.optional ? "?" : "") +
         (p.paramArray ? "..." : "");
  }
  return s + ")" + (a.result == VarType::Empty ? "" : std::string(TypeName(a.result)));
}

// "id name kinds; " for each member in slot order.
std::string Table(const char* progId) {
  const Ref<Object> object = CreateObject(progId);
  const ClassInfo& info = *object->Class();
  std::string out;
  for (const MemberInfo& m : info.Members())
    out += std::to_string(m.id) + " " + m.name + Describe(m.isMethod ? "M" : "G", m.get) +
           Describe("L", m.let) + Describe("S", m.set) + "; ";
  if (info.DefaultMember() != DispIdUnknown) out += "default " + std::to_string(info.DefaultMember());
  return out;
}

}  // namespace

TEST(BuilderTables, SlotsNamesKindsAndParameters) {
  const std::pair<const char*, const char*> expected[] = {
      {"TessarkAO.TKExtrudeShape",
       "1 UserName G()String L(arg1:String); 2 RemovesMaterial G()Boolean L(arg1:Boolean); "
       "3 Position G()Object S(arg1:Object); 4 Height G(Direction:Long)Double L(arg1:Long,arg2:Double); "
       "5 PathComponents G()Variant; 6 Finish M(); 7 Create M(Parent:Variant)Variant; "},
      {"TessarkAO.TKSMExtrudeShape",
       "1 UserName G()String L(arg1:String); 2 Position G()Object S(arg1:Object); "
       "3 SheetMetalType G()Long L(arg1:Long); 4 Thickness G()Double L(arg1:Double); "
       "5 PathComponents G()Variant; 6 Part G()Variant; 7 Finish M(); 8 Create M(Parent:Variant)Variant; "},
      {"TessarkAO.TKSMBendShape",
       "1 SuppressedReliefs G()Long L(arg1:Long); 2 ReliefDepth G()Double L(arg1:Double); "
       "3 ReliefWidth G()Double L(arg1:Double); 4 ReliefType G()Long L(arg1:Long); "
       "5 DropFlags G()Long L(arg1:Long); "
       "6 StockSegmentLength G(Index:Long)Double L(arg1:Long,arg2:Double); "
       "7 ExtrudeDistance G(Index:Long)Double L(arg1:Long,arg2:Double); 8 Direction G()Long L(arg1:Long); "
       "9 InsideRadius G()Double L(arg1:Double); 10 Angle G()Double L(arg1:Double); "
       "11 UserName G()String L(arg1:String); 12 BendComponent G()Variant; 13 Part G()Variant; "
       "14 Finish M(); 15 Create M(Parent:Variant)Variant; "
       "16 CornerReliefDepth G(Index:Long)Double L(arg1:Long,arg2:Double); "
       "17 CornerReliefType G(Index:Long)Long L(arg1:Long,arg2:Long); "
       "18 CornerReliefOrientation G(Index:Long)Long L(arg1:Long,arg2:Long); "},
      {"TessarkAO.TKSMFormingShape",
       "1 UserName G()String L(arg1:String); 2 Position G()Object S(arg1:Object); "
       "3 Depth G()Double L(arg1:Double); 4 PunchRadius G()Double L(arg1:Double); "
       "5 DieRadius G()Double L(arg1:Double); 6 Direction G()Long L(arg1:Long); "
       "7 PathComponents G()Variant; 8 Part G()Variant; 9 Finish M(); 10 Create M(Parent:Variant)Variant; "},
      {"TessarkAO.TKSMCurvedStockShape",
       "1 UserName G()String L(arg1:String); 2 Position G()Object S(arg1:Object); "
       "3 Radius G()Double L(arg1:Double); 4 SweepAngle G()Double L(arg1:Double); "
       "5 Width G()Double L(arg1:Double); 6 Thickness G()Double L(arg1:Double); "
       "7 PathComponents G()Variant; 8 Part G()Variant; 9 Finish M(); 10 Create M(Parent:Variant)Variant; "},
      {"TessarkAO.TKSMConicShape",
       "1 UserName G()String L(arg1:String); 2 Position G()Object S(arg1:Object); "
       "3 TopRadius G()Double L(arg1:Double); 4 BottomRadius G()Double L(arg1:Double); "
       "5 Height G()Double L(arg1:Double); 6 Thickness G()Double L(arg1:Double); 7 Part G()Variant; "
       "8 Finish M(); 9 Create M(Parent:Variant)Variant; "},
  };
  for (const auto& [progId, table] : expected) EXPECT_EQ(Table(progId), table) << progId;
}
