// The call-behaviour rows through the native runtime's one call path.
#include <gtest/gtest.h>

#include "automation/Call.hpp"
#include "automation/Convert.hpp"
#include "calls/CallProbe.hpp"
#include "calls/CallRows.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

Variant ValueOf(const std::string& t) {
  const std::string rest = t.substr(1);
  switch (t[0]) {
    case 'L': return Variant(std::int32_t{std::stoi(rest)});
    case 'D': return Variant(std::stod(rest));
    case 'S': return Variant(rest);
    case 'B': return Variant(rest == "1");
    case 'M': return Variant::Missing();
    default: return Variant();
  }
}

// "L5", "D2.5", "Sabc", "B1", "E": the value's type tag and text.
std::string TextOf(const Variant& v) {
  switch (v.Type()) {
    case VarType::Long: return "L" + ToString(v);
    case VarType::Double: return "D" + ToString(v);
    case VarType::String: return "S" + v.AsString();
    case VarType::Boolean: return v.AsBoolean() ? "B1" : "B0";
    case VarType::Empty: return "E";
    default: return "?" + std::string(TypeName(v.Type()));
  }
}

CallKind KindOf(const std::string& k) {
  return k == "let" ? CallKind::Let : k == "method" ? CallKind::Method : CallKind::Get;
}

}  // namespace

TEST(CallRows, NativeRuntime) {
  const auto rows = CallRows();
  ASSERT_GT(rows.size(), 25u);
  for (const CallRow& row : rows) {
    SCOPED_TRACE(row.text);
    Ref<Object> probe = MakeRef<CallProbe>();
    std::vector<Variant> targets(row.args.size());
    std::vector<Variant> args;
    for (std::size_t i = 0; i < row.args.size(); ++i) {
      if (row.args[i][0] == '&') {
        targets[i] = ValueOf(row.args[i].substr(1));
        args.push_back(Variant::ByRef(targets[i]));
      } else {
        args.push_back(ValueOf(row.args[i]));
      }
    }
    try {
      const Variant r = row.kind == "default" ? Call(*probe, DispIdValue, CallKind::Get, args)
                                              : Call(*probe, row.member, KindOf(row.kind), args);
      EXPECT_EQ("=" + TextOf(r), row.expect);
    } catch (const AutomationError& e) {
      EXPECT_EQ(e.Number(), row.ErrorNumber()) << e.Description();
      EXPECT_NE(e.Description().find(row.ErrorText()), std::string::npos) << e.Description();
      EXPECT_EQ(e.HResult(), 0x800A0000u | static_cast<std::uint32_t>(e.Number()));
      EXPECT_EQ(e.Source(), "CallProbe");
    }
    for (const auto& [n, value] : row.outputs) EXPECT_EQ(TextOf(targets[n - 1]), value);
  }
}
