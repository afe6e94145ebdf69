// Variable formulas: the language, references to other components of the
// shape, re-evaluation, and the errors a bad formula raises.
#include "refhost/Expression.hpp"

#include "RefHostTestSupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::RefHostTest;

namespace {

double Eval(std::string_view text) {
  return RefHost::EvaluateExpression(text, [](std::string_view c, std::string_view v) -> double {
    if (c.empty() && v == "h") return 4.0;
    if (EqualsNoCaseAscii(c, "sizebox") && EqualsNoCaseAscii(v, "length")) return 10.0;
    if (c == "SM Part" && v == "2") return 0.25;
    Raise(Err::InvalidCall, "no such variable");
  });
}

}  // namespace

TEST(Expression, ArithmeticFollowsTheUsualPrecedence) {
  struct Row {
    const char* text;
    double value;
  } rows[] = {
      {"1 + 2 * 3", 7},   {"(1 + 2) * 3", 9},    {"10 - 4 - 3", 3},  {"12 / 4 / 3", 1},
      {"-2^2", -4},       {"2^3^2", 64},         {"2^-1", 0.5},      {"--3", 3},
      {"-(2 + 3) * +2", -10}, {"1.5e2", 150},    {".5", 0.5},        {"  7  ", 7},
      {"(Sizebox\\Length * 0.5)", 5}, {"sizebox \\ LENGTH - h", 6}, {"SM Part\\2 * 8", 2}, {"h^0.5", 2},
  };
  for (const Row& r : rows) EXPECT_DOUBLE_EQ(Eval(r.text), r.value) << r.text;
}

TEST(Expression, ErrorsNameTheProblem) {
  EXPECT_EQ(ErrorOf([] { Eval("1 / 0"); }), 11);
  EXPECT_EQ(ErrorOf([] { Eval("0 / 0"); }), 6);
  EXPECT_EQ(ErrorOf([] { Eval("(-8) ^ 0.5"); }), 5);
  EXPECT_EQ(ErrorOf([] { Eval("1e999"); }), 6);
  for (const char* bad : {"", "(1", "1 +", "1 2", "Sizebox\\", "*3", "1..2", "2e", "Nope\\X", "h)"})
    EXPECT_EQ(ErrorOf([&] { Eval(bad); }), 5) << bad;
  std::string message;
  ErrorOf([] { Eval("1 + Nope\\X"); }, &message);
  EXPECT_NE(message.find("at character 5"), std::string::npos);
  EXPECT_EQ(ErrorOf([] { Eval(std::string(500, '(') + "1" + std::string(500, ')')); }), 16);
}

TEST(Expression, AnchorFormulasFollowTheSizeBox) {
  Variant app(RefHost::NewApplication());
  Variant part = AddShape(Root(app), 3);
  SetVar(part, 1, 1, 10.0);
  SetVar(part, 1, 2, 4.0);
  Variant x = Comp(part, 5).Call("Variable", 1);
  x.Let("Expression", "(Sizebox\\Length * 0.5)");
  EXPECT_EQ(ToDouble(x.Get("Value")), 5.0);
  EXPECT_EQ(ToString(x.Get("Expression")), "(Sizebox\\Length * 0.5)");

  // The value holds until the shape is regenerated.
  SetVar(part, 1, 1, 30.0);
  EXPECT_EQ(ToDouble(x.Get("Value")), 5.0);
  part.Call("Update");
  EXPECT_EQ(ToDouble(x.Get("Value")), 15.0);

  // A chain of formulas settles on one update.
  Variant y = Comp(part, 5).Call("Variable", 2);
  y.Let("Expression", "Anchor\\X + Sizebox\\Width");
  SetVar(part, 1, 1, 2.0);
  app.Get("ActivePage").Call("Update");
  EXPECT_EQ(ToDouble(x.Get("Value")), 1.0);
  EXPECT_EQ(ToDouble(y.Get("Value")), 5.0);

  // A bad formula changes nothing; assigning a value drops the formula.
  EXPECT_EQ(ErrorOf([&] { x.Let("Expression", "Sizebox\\Depth"); }), 5);
  EXPECT_EQ(ToString(x.Get("Expression")), "(Sizebox\\Length * 0.5)");
  x.Let("Value", 7.0);
  EXPECT_EQ(ToString(x.Get("Expression")), "");
  part.Call("Update");
  EXPECT_EQ(ToDouble(x.Get("Value")), 7.0);

  // Long variables round the result.  (The locale's decimal comma is read in
  // the anchor formulas of the position tests.)
  Variant mirror = Comp(part, 4).Call("Variable", 9);
  mirror.Let("Expression", "2.5");
  EXPECT_EQ(mirror.Get("Value").Type(), VarType::Long);
  EXPECT_EQ(ToLong(mirror.Get("Value")), 2);
}
