// The sheet-metal form, curved stock and conic builders on the reference
// host: the host calls of Create and Finish (from the host's call journal),
// placement, defaults and checks, and the shapes as the scene sees them
// afterwards.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>


#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "frame/Globals.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

namespace {

constexpr const char* kForm = "TessarkAO.TKSMFormingShape";
constexpr const char* kCurved = "TessarkAO.TKSMCurvedStockShape";
constexpr const char* kConic = "TessarkAO.TKSMConicShape";

// A fresh scene with the host's journal on, and helpers to reach its root
// and to make a part in it.
struct SheetMetalScene : ::testing::Test {
  Ref<Object> app = RefHost::NewApplication();
  Variant page = Variant(app).Get("ActivePage");
  Variant root = page.Get("Shape");

  void SetUp() override {
    RefHost::ClearJournal();
    RefHost::StartJournal();
  }
  void TearDown() override {
    RefHost::StopJournal();
    RefHost::ClearJournal();
  }
  Variant NewPart() {
    Variant part = root.Get("Components", 2).Call("Item", 1).Get("Shapes", 3).Call("Add");
    RefHost::ClearJournal();
    return part;
  }
  // The journal's lines, leaving out the reads and the position and anchor
  // writes of the placement (checked by value below); with `letsOnly` the
  // assignments alone.
  static std::vector<std::string> Actions(bool letsOnly = false) {
    std::vector<std::string> out;
    std::istringstream lines(RefHost::FormatJournal(RefHost::Journal()));
    for (std::string l; std::getline(lines, l);) {
      if (l.rfind("get", 0) == 0 || (letsOnly && l.rfind("let", 0) != 0)) continue;
      if (l.find(".Components(4)") != std::string::npos || l.find(".Components(5)") != std::string::npos) continue;
      out.push_back(l);
    }
    return out;
  }
};

double Var(const Variant& shape, std::int32_t component, std::int32_t number) {
  return ToDouble(shape.Get("Components", component).Call("Item", 1).Call("Variable", number).Get("Value"));
}

std::string D(double v) { return RefHost::FormatJournalValue(Variant(v)); }

const std::vector<std::string> kSheetMetalFinish(const std::string& s) {
  std::vector<std::string> out = {"call " + s + ".Update()", "call " + s + ".ResetSizeBox()",
                                  "call " + s + ".Components(1).Item(1%)"};
  const int vars[9] = {15, 8, 9, 10, 14, 4, 5, 6, 7}, values[9] = {1, 1, 1, 1, 0, 0, 0, 1, 0};
  for (int i = 0; i < 9; ++i)
    out.push_back("let  " + s + ".Components(1).Item(1).Variable(" + std::to_string(vars[i]) +
                  ").Value = " + std::to_string(values[i]) + "%");
  return out;
}

}  // namespace

TEST(FurtherBuilders, DefaultsAndChecks) {
  Variant form(CreateObject(kForm)), curved(CreateObject(kCurved)), conic(CreateObject(kConic));
  for (const Variant* b : {&form, &curved, &conic}) {
    EXPECT_EQ(ToString(b->Get("UserName")), "Sheet Metal");
    EXPECT_TRUE(b->Get("Part").IsNothing());
  }
  EXPECT_EQ(ToDouble(form.Get("Depth")), 0.25);
  EXPECT_EQ(ToDouble(form.Get("PunchRadius")), 0.0625);
  EXPECT_EQ(ToDouble(form.Get("DieRadius")), 0.0625);
  EXPECT_EQ(ToLong(form.Get("Direction")), 1);
  EXPECT_TRUE(form.Get("PathComponents").IsNothing());
  EXPECT_EQ(ToDouble(curved.Get("SweepAngle")), 3.14159265358979 / 180 * 90);
  EXPECT_EQ(ToDouble(curved.Get("Radius")), 1.0);
  EXPECT_EQ(ToDouble(curved.Get("Width")), 1.0);
  EXPECT_EQ(ToDouble(curved.Get("Thickness")), 0.1);
  EXPECT_EQ(ToDouble(conic.Get("TopRadius")), 0.5);
  EXPECT_EQ(ToDouble(conic.Get("BottomRadius")), 1.0);
  EXPECT_EQ(ToDouble(conic.Get("Height")), 1.0);

  // Sizes the host cannot build are refused with 5 and leave the old value.
  struct Bad {
    Variant* builder;
    const char* member;
    Variant value;
  } bad[] = {{&form, "Depth", 0.0},          {&form, "PunchRadius", -0.1}, {&form, "DieRadius", -1e-300},
             {&form, "Direction", 3},        {&form, "Direction", 0},      {&curved, "Radius", 0.0},
             {&curved, "SweepAngle", 0.0},   {&curved, "SweepAngle", 2 * 3.14159265358979},
             {&curved, "Width", -1.0},       {&curved, "Thickness", 0.0},  {&conic, "TopRadius", -0.5},
             {&conic, "Height", 0.0},        {&conic, "Thickness", -0.1}};
  for (const Bad& c : bad) {
    const Variant before = c.builder->Get(c.member);
    try {
      c.builder->Let(c.member, c.value);
      ADD_FAILURE() << c.member << " accepted " << ToString(c.value);
    } catch (const AutomationError& e) {
      EXPECT_EQ(e.Number(), Err::InvalidCall) << c.member;
    }
    EXPECT_EQ(ToDouble(c.builder->Get(c.member)), ToDouble(before)) << c.member;
  }
  EXPECT_THROW(form.Let("Depth", "deep"), AutomationError);
  conic.Let("TopRadius", 0.0);  // a pointed cone is fine
  curved.Let("SweepAngle", 6.28);
  EXPECT_EQ(ToDouble(curved.Get("SweepAngle")), 6.28);
}

// Finish before Create makes no host call, even with a host shape at hand
// through the builder's position.
TEST_F(SheetMetalScene, FinishBeforeCreateMakesNoHostCall) {
  const Variant part = NewPart();
  for (const char* progId : {kForm, kCurved, kConic}) {
    Variant b(CreateObject(progId));
    b.Get("Position").Set("Shape", part);
    RefHost::ClearJournal();
    b.Call("Finish");
    EXPECT_TRUE(RefHost::Journal().empty()) << progId;
    EXPECT_TRUE(b.Get("Part").IsNothing());
  }
}

TEST_F(SheetMetalScene, FormCreateInAnAssemblyAndFinish) {
  Variant b(CreateObject(kForm));
  b.Let("Depth", 0.5);
  b.Let("Direction", 2);
  b.Let("UserName", "Louver");
  const Variant shape = b.Call("Create", root);
  const std::string s = "Scene1//Part//Louver";
  const std::vector<std::string> create = {
      "call Scene1//.Components(2).Item(1%)",
      "call Scene1//.Components(2).Item(1).Shapes(3).Add()",
      "call Scene1//Part.Components(62).Add()",
      "call Scene1//Part.Components(23).Item(1%)",
      "call Scene1//Part.Components(23).Item(1).Shapes(13).Add()",
      "call Scene1//Part//Sheet Metal Form Shape.Initialize()",
      "let  Scene1//Part//Sheet Metal Form Shape.Name = \"Louver\"",
      "call " + s + ".Components(67).Item(1%)",
      "let  " + s + ".Components(67).Item(1).Variable(1).Value = 2&",
      "let  " + s + ".Components(67).Item(1).Variable(2).Value = 0.5",
      "let  " + s + ".Components(67).Item(1).Variable(3).Value = 0.0625",
      "let  " + s + ".Components(67).Item(1).Variable(4).Value = 0.0625",
      "call " + s + ".Components(15).Item(1%)",
  };
  EXPECT_EQ(Actions(), create);
  EXPECT_EQ(ToLong(shape.Get("Type")), 13);
  EXPECT_EQ(b.Get("Part").AsObject().get(), shape.AsObject().get());

  // The footprint is drawn by the caller; Finish then regenerates.
  const Variant path = b.Get("PathComponents").Call("Add");
  path.Call("SetStartPoint", 0.0, 0.0);
  for (auto [x, y] : {std::pair{2.0, 0.0}, {2.0, 1.0}, {0.0, 1.0}, {0.0, 0.0}}) path.Call("AddLineTo", x, y);
  RefHost::ClearJournal();
  b.Call("Finish");
  EXPECT_EQ(Actions(), kSheetMetalFinish(s));
  // The host's form stands out below the sheet by its depth.
  EXPECT_EQ(Var(shape, 1, 3), 0.5);
  EXPECT_EQ(Var(shape, 1, 13), -0.5);
  EXPECT_EQ(Var(shape, 1, 1), 2.0);
}

TEST_F(SheetMetalScene, FormCreateOnAPart) {
  const Variant part = NewPart();
  Variant b(CreateObject(kForm));
  b.Call("Create", part);
  const std::vector<std::string> expected = {
      "call Scene1//Part.Components(62).Add()",
      "call Scene1//Part.Components(23).Item(1%)",
      "call Scene1//Part.Components(23).Item(1).Shapes(13).Add()",
      "call Scene1//Part//Sheet Metal Form Shape.Initialize()",
      "let  Scene1//Part//Sheet Metal Form Shape.Name = \"Sheet Metal\"",
      "call Scene1//Part//Sheet Metal.Components(67).Item(1%)",
      "let  Scene1//Part//Sheet Metal.Components(67).Item(1).Variable(1).Value = 1&",
      "let  Scene1//Part//Sheet Metal.Components(67).Item(1).Variable(2).Value = 0.25",
      "let  Scene1//Part//Sheet Metal.Components(67).Item(1).Variable(3).Value = 0.0625",
      "let  Scene1//Part//Sheet Metal.Components(67).Item(1).Variable(4).Value = 0.0625",
      "call Scene1//Part//Sheet Metal.Components(15).Item(1%)",
  };
  EXPECT_EQ(Actions(), expected);
  // A second form on the same part finds its sheet-metal component.
  RefHost::ClearJournal();
  Variant(CreateObject(kForm)).Call("Create", part);
  EXPECT_EQ(Actions().front(), "call Scene1//Part.Components(62).Item(1%)");
}

TEST_F(SheetMetalScene, CurvedStockDrawsItsArc) {
  Variant b(CreateObject(kCurved));
  b.Let("Radius", 2.0);
  b.Let("Width", 3.0);
  b.Let("Thickness", 0.25);
  const Variant shape = b.Call("Create", NewPart());
  const double q = 3.14159265358979 / 180 * 90;
  const std::string s = "Scene1//Part//Sheet Metal";
  const std::string paths = s + ".Components(15).Item(1).Profile.Components(3)";
  const std::vector<std::string> expected = {
      "call Scene1//Part.Components(62).Add()",
      "call Scene1//Part.Components(23).Item(1%)",
      "call Scene1//Part.Components(23).Item(1).Shapes(11).Add()",
      "call Scene1//Part//Sheet Metal Extrude.Initialize(2&)",
      "let  Scene1//Part//Sheet Metal Extrude.Name = \"Sheet Metal\"",
      "call " + s + ".Components(63).Item(1%)",
      "let  " + s + ".Components(63).Item(1).Variable(55).Value = 0.25",
      "let  " + s + ".Components(63).Item(1).Variable(56).Value = 0",
      "let  " + s + ".Components(63).Item(1).Variable(57).Value = 3",
      "call " + s + ".Components(15).Item(1%)",
      "call " + paths + ".Add()",
      "call " + paths + ".Item(1).SetStartPoint(2, 0)",
      "call " + paths + ".Item(1).AddArcTo(" + D(2.0 * std::cos(q)) + ", " + D(2.0 * std::sin(q)) + ", " +
          D(std::tan(q / 4)) + ")",
  };
  EXPECT_EQ(Actions(), expected);
  RefHost::ClearJournal();
  b.Call("Finish");
  EXPECT_EQ(Actions(), kSheetMetalFinish(s));
  EXPECT_EQ(Var(shape, 1, 3), 3.0);  // the host stands curved stock as wide as its width
}

// The arc as the host reads it back: end point on the circle at the sweep
// angle, and an H factor equal to the arc's height over its chord divided by
// half the chord, worked out from the drawn points alone.
TEST_F(SheetMetalScene, CurvedStockArcGeometry) {
  std::mt19937 rng(20260522);
  std::uniform_real_distribution<double> radius(0.01, 50.0), angle(0.01, 6.27);
  for (int i = 0; i < 40; ++i) {
    Variant b(CreateObject(kCurved));
    const double r = radius(rng), a = angle(rng);
    b.Let("Radius", r);
    b.Let("SweepAngle", a);
    b.Call("Create", NewPart());
    const Variant path = b.Get("PathComponents").Call("Item", 1);
    auto v = [&](int curve, int n) { return ToDouble(path.Call("Variable", curve, n).Get("Value")); };
    const double sx = v(0, 1), sy = v(0, 2), ex = v(1, 1), ey = v(1, 2), h = v(1, 9);
    EXPECT_EQ(sx, r);
    EXPECT_EQ(sy, 0.0);
    EXPECT_NEAR(std::hypot(ex, ey), r, 1e-12 * r);
    EXPECT_NEAR(std::atan2(-ey, -ex) + 3.14159265358979, a, 1e-9);
    const double halfChord = std::hypot(ex - sx, ey - sy) / 2;
    const double apart = std::sqrt(std::max(0.0, r * r - halfChord * halfChord));
    const double height = a <= 3.14159265358979 ? r - apart : r + apart;  // a major arc passes the centre
    EXPECT_NEAR(h, height / halfChord, 1e-7 * std::max(1.0, h)) << "r=" << r << " a=" << a;
    EXPECT_GT(h, 0.0);  // counter-clockwise
  }
}

TEST_F(SheetMetalScene, ConicSendsItsNamedParameters) {
  Variant b(CreateObject(kConic));
  b.Let("TopRadius", 0.75);
  b.Let("BottomRadius", 2.5);
  b.Let("Height", 4.0);
  const Variant shape = b.Call("Create", root);
  const std::string s = "Scene1//Part//Sheet Metal.Components(63).Item(1)";
  const std::vector<std::string> lets = {
      "let  Scene1//Part//Sheet Metal Extrude.Name = \"Sheet Metal\"",
      "let  " + s + ".Variable(55).Value = 0.1",
      "let  " + s + ".Variable(56).Value = 0",
      "let  " + s + ".Variable(57).Value = 0.75",
      "let  " + s + ".Variable(58).Value = 2.5",
      "let  " + s + ".Variable(59).Value = 4",
  };
  EXPECT_EQ(Actions(true), lets);
  const std::vector<std::string> actions = Actions();
  EXPECT_NE(std::find(actions.begin(), actions.end(),
                      "call Scene1//Part//Sheet Metal Extrude.Initialize(3&)"),
            actions.end());
  // The parameters were reached through the variable list, by name.
  EXPECT_NE(std::find(actions.begin(), actions.end(), "call " + s + ".Variables.Item(3&)"), actions.end());
  const Variant stock = shape.Get("Components", 63).Call("Item", 1);
  EXPECT_EQ(ToDouble(Globals::FindHostVariable(stock, "bottom RADIUS").Get("Value")), 2.5);
  EXPECT_TRUE(Globals::FindHostVariable(stock, "Bottom").IsNothing());
  EXPECT_TRUE(Globals::FindHostVariable(stock, "").IsNothing());

  RefHost::ClearJournal();
  b.Call("Finish");
  EXPECT_EQ(Actions(), kSheetMetalFinish("Scene1//Part//Sheet Metal"));

  // Both radii 0 is refused before any host call.
  Variant closed(CreateObject(kConic));
  closed.Let("TopRadius", 0.0);
  closed.Let("BottomRadius", 0.0);
  RefHost::ClearJournal();
  EXPECT_THROW(closed.Call("Create", root), AutomationError);
  EXPECT_TRUE(RefHost::Journal().empty());
  EXPECT_TRUE(closed.Get("Part").IsNothing());
}

// Each builder places its shape with its own position: in an assembly the
// new part takes the placement and the feature sits at the part's origin; on
// a part the feature itself takes it.  The scene lists the new shape.
TEST_F(SheetMetalScene, PlacementAndTheSceneAfterwards) {
  struct Case {
    const char* progId;
    std::int32_t kind;
  } cases[] = {{kForm, 13}, {kCurved, 11}, {kConic, 11}};
  for (const Case& c : cases) {
    for (bool inAssembly : {true, false}) {
      Ref<Object> app2 = RefHost::NewApplication();
      const Variant scene = Variant(app2).Get("ActivePage");
      const Variant top = scene.Get("Shape");
      const Variant part = top.Get("Components", 2).Call("Item", 1).Get("Shapes", 3).Call("Add");
      Variant b(CreateObject(c.progId));
      Variant pos(CreateObject("TessarkAO.TKPosition"));
      pos.Let("PosX", 10.0);
      pos.Let("PosY", 20.0);
      pos.Let("PosZ", 5.0);
      b.Set("Position", pos);
      pos.Let("PosX", 99.0);  // the builder keeps a copy, not the caller's object
      EXPECT_EQ(ToDouble(b.Get("Position").Get("PosX")), 10.0);
      EXPECT_NE(b.Get("Position").AsObject().get(), pos.AsObject().get());

      SCOPED_TRACE(std::string(c.progId) + (inAssembly ? " in an assembly" : " on a part"));
      const Variant shape = b.Call("Create", inAssembly ? top : part);
      b.Call("Finish");
      const Variant placed =
          inAssembly ? top.Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Item", 2) : shape;
      EXPECT_EQ(Var(placed, 4, 1), 10.0) << c.progId;
      EXPECT_EQ(Var(placed, 4, 2), 20.0) << c.progId;
      EXPECT_EQ(Var(placed, 4, 3), 5.0) << c.progId;
      if (inAssembly) {
        EXPECT_NE(placed.AsObject().get(), part.AsObject().get());
        for (int n = 1; n <= 3; ++n) EXPECT_EQ(Var(shape, 4, n), 0.0) << c.progId;
        EXPECT_EQ(ToDouble(b.Get("Position").Get("PosX")), 0.0);  // zeroed for the feature
      }

      Variant tv(CreateObject("TessarkAO.TKTreeView"));
      tv.Set("Scene", scene);
      EXPECT_EQ(ToLong(tv.Get("NumberOfShapes", c.kind)), 1) << c.progId;
      EXPECT_EQ(tv.Get("Shape", 1, c.kind).AsObject().get(), shape.AsObject().get()) << c.progId;
      EXPECT_EQ(ToLong(tv.Get("ShapeDepth", 1, c.kind)), 2);
      EXPECT_EQ(ToLong(tv.Get("NumberOfShapes", 3)), inAssembly ? 2 : 1);
    }
  }
}
